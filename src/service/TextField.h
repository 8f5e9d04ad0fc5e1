// A text field of a record object: null, or a text of UTF-16 code units without a NUL. A text
// whose units all lie below 256, as a disc's texts do, is kept one byte a unit: a directory of
// 100,000 images holds some 400,000 texts, and a BSTR would take twice the bytes and a header.
// The units are given back exactly as they were set. A loaded record's ASCII texts may lie in
// storage of the record object's own allocation, which spares an allocation per text.
#ifndef HALVORINE_SERVICE_TEXTFIELD_H
#define HALVORINE_SERVICE_TEXTFIELD_H

#include <halvorine/com.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace halvorine {

class TextField {
 public:
  TextField() = default;
  TextField(const TextField&) = delete;
  TextField& operator=(const TextField&) = delete;
  ~TextField() { Replace(0); }

  bool IsNull() const { return bits_ == 0; }

  // A new BSTR of the text in *out, null for a null field; false when memory runs out.
  bool Get(BSTR* out) const;
  // Keeps a copy of text up to its first NUL; null makes the field null. False when memory runs
  // out, and the field is then unchanged.
  bool Set(const OLECHAR* text);
  // As Set with text's UTF-16 form (Utf8ToUtf16), which it makes only for a text beyond ASCII;
  // nothing makes the field null.
  bool SetUtf8(std::optional<std::string_view> text);

  // The bytes of text up to its first NUL when they are all ASCII, as a loaded text nearly always
  // is; nothing for a null text or one beyond ASCII.
  static std::optional<std::string_view> AsciiPart(std::optional<std::string_view> text);
  // The bytes that SetAsciiAt keeps ascii in: an even number.
  static std::size_t StorageSize(std::string_view ascii) {
    return (sizeof(Header) + ascii.size() + 1) & ~std::size_t{1};
  }
  // Keeps ascii, an AsciiPart, in storage: StorageSize(ascii) bytes at an even address, which the
  // field's owner provides for the field's whole life and frees itself.
  void SetAsciiAt(std::string_view ascii, std::byte* storage);

 private:
  // The block: this header, then length units of unitSize bytes each.
  struct Header {
    std::uint32_t length;
    std::uint32_t unitSize;
  };

  // Set on the block's address when the block lies in the owner's storage, not the field's own.
  static constexpr std::uintptr_t kInStorage = 1;

  // A block for length units of unitSize bytes, its header filled; null when memory runs out.
  static std::unique_ptr<std::byte[]> MakeBlock(std::size_t length, std::uint32_t unitSize);

  const std::byte* Block() const { return reinterpret_cast<const std::byte*>(bits_ & ~kInStorage); }
  // Takes bits as the field's block, freeing a block of its own that it held.
  void Replace(std::uintptr_t bits);

  std::uintptr_t bits_ = 0;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_TEXTFIELD_H
