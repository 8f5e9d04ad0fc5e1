// A text field of a record object: null, or a text of UTF-16 code units without a NUL. A text
// whose units all lie below 256, as a disc's texts do, is kept one byte a unit: a directory of
// 100,000 images holds some 400,000 texts, and a BSTR would take twice the bytes and a header.
// The units are given back exactly as they were set.
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
  bool IsNull() const { return block_ == nullptr; }

  // A new BSTR of the text in *out, null for a null field; false when memory runs out.
  bool Get(BSTR* out) const;
  // Keeps a copy of text up to its first NUL; null makes the field null. False when memory runs
  // out, and the field is then unchanged.
  bool Set(const OLECHAR* text);
  // As Set with text's UTF-16 form (Utf8ToUtf16), which it makes only for a text beyond ASCII;
  // nothing makes the field null.
  bool SetUtf8(std::optional<std::string_view> text);

 private:
  // The block: this header, then length units of unitSize bytes each.
  struct Header {
    std::uint32_t length;
    std::uint32_t unitSize;
  };

  // A block for length units of unitSize bytes, its header filled; null when memory runs out.
  static std::unique_ptr<std::byte[]> MakeBlock(std::size_t length, std::uint32_t unitSize);

  std::unique_ptr<std::byte[]> block_;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_TEXTFIELD_H
