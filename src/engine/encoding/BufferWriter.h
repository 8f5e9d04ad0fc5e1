// A DICOM byte stream assembled in one growing memory block. Nothing reaches a file until the
// stream is whole, so a length can be written as a guess and corrected at its position later.
//
// Every multi-byte value goes out little-endian, whatever the syntax says. An element's header
// takes one of these forms (sizes in bytes):
//
//   explicit, short form            group 2 | element 2 | code 2 | length 2          | value
//   explicit, OB OW SQ UN UT        group 2 | element 2 | code 2 | 00 00 | length 4  | value
//   implicit                        group 2 | element 2 |                 length 4   | value
//   group FFFE, in every syntax     group 2 | element 2 |                 length 4   | value
//
// A VR form of 0 (no syntax set) counts as explicit.
#ifndef HALVORINE_ENGINE_ENCODING_BUFFERWRITER_H
#define HALVORINE_ENGINE_ENCODING_BUFFERWRITER_H

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "engine/dictionary/TransferSyntax.h"

namespace DicomEngine {

class BufferWriter {
 public:
  // The block grows by this step, or by a single larger write's size.
  static constexpr std::uint32_t kGrowthStep = 1'000'000;

  // With a UID that the TransferSyntax table lacks, or an empty one, the syntax stays unset.
  explicit BufferWriter(std::string_view transferSyntaxUid);
  BufferWriter(const BufferWriter&) = delete;
  BufferWriter& operator=(const BufferWriter&) = delete;
  virtual ~BufferWriter();

  // Implicit VR little endian for group FFFE, else the writer's syntax.
  virtual SyntaxRecord GetSyntaxForGroup(std::uint16_t group) const;

  void WriteUnsignedShort(std::uint16_t value) { Put(value); }
  void WriteUnsignedLong(std::uint32_t value) { Put(value); }
  void WriteFloat(float value);
  void WriteDouble(double value);
  // Exactly count bytes. A null block with a non-zero count writes count zero bytes.
  void WriteBytes(const std::uint8_t* data, std::uint32_t count);
  // Nothing for a length of 0. Otherwise the text up to its first NUL, then blanks up to the
  // length made even; a text that long or longer is written whole, unpadded.
  void WriteText(std::string_view text, std::uint32_t length);
  // As WriteText, with NUL bytes up to the length itself, never made even.
  void WriteUid(std::string_view text, std::uint32_t length);
  // The code's letters, blanks up to two bytes; nothing for group FFFE or an implicit syntax.
  void WriteVRCode(std::uint16_t group, std::string_view code);
  // The length field in the form that the group's syntax and the code decide. The short form
  // keeps the low 16 bits of the length, without a failure.
  void WriteLength(std::uint16_t group, std::string_view code, std::uint32_t length);

  // Any position up to and including the capacity; raises beyond it. Whoever moves the cursor
  // back must return it to the end: the stream ends where the cursor stands.
  void SetCursor(std::uint32_t position);
  // Puts 4 bytes at position without moving the cursor; raises when they don't fit the block.
  void WriteUnsignedLongAtPosition(std::uint32_t value, std::uint32_t position);

  // Room for count more bytes at the cursor. Throws std::bad_alloc when the block can't grow
  // or would pass 4 GiB; buffer, capacity and cursor then stay as they were.
  void EnsureCapacity(std::uint64_t count) {
    if (cursor_ + count > capacity_) Grow(count);
  }

  // The stream: GetCursor() bytes from GetBuffer(), which is null until the first write.
  const std::uint8_t* GetBuffer() const { return buffer_.get(); }
  std::uint32_t GetCursor() const { return cursor_; }
  std::uint32_t GetCapacity() const { return capacity_; }
  SyntaxRecord GetSyntax() const { return syntax_; }

 protected:
  void SetSyntax(SyntaxRecord syntax) { syntax_ = syntax; }

 private:
  struct FreeBlock {
    void operator()(std::uint8_t* block) const { std::free(block); }
  };

  void Grow(std::uint64_t count);
  // Appends the value's bytes, least significant first.
  template <typename Unsigned>
  void Put(Unsigned value) {
    EnsureCapacity(sizeof value);
    std::uint8_t* target = buffer_.get() + cursor_;
    for (std::size_t i = 0; i < sizeof value; ++i)
      target[i] = static_cast<std::uint8_t>(value >> (8 * i));
    cursor_ += sizeof value;
  }
  // Nothing for a length of 0; else the text up to its first NUL, then pad bytes up to length.
  void WritePadded(std::string_view text, std::uint64_t length, std::uint8_t pad);

  // realloc'ed, so that a grown block can stay in place.
  std::unique_ptr<std::uint8_t, FreeBlock> buffer_;
  std::uint32_t capacity_ = 0;
  SyntaxRecord syntax_;
  std::uint32_t cursor_ = 0;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ENCODING_BUFFERWRITER_H
