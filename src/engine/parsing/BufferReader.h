// A cursor over a MultiChunkBuffer that hands the parser copies of what it reads: numbers, strings
// and blocks, always least significant byte first, never swapped. It knows nothing of DICOM.
//
// A nested reader bounds one sequence item. Offsets are absolute in the row, in a nested reader
// too, and whatever moves a nested reader moves all its ancestors by the same amount:
//
//   row     [0 ............................................................ GetLength())
//   root             position --->                                       end = GetLength()
//   item               [position --->          end)       a nested reader of the root
//   item in item          [position --->  end)            a nested reader of the item
//
// So a reader and its nested readers share one cursor: only the ends are their own. The cursor
// never goes back, so the bytes of the chunks behind it are let go as it moves on.
//
// Every read is bounded by end: a count that passes it fails before anything is allocated or
// moved, and a failed read leaves position where it was.
#ifndef HALVORINE_ENGINE_PARSING_BUFFERREADER_H
#define HALVORINE_ENGINE_PARSING_BUFFERREADER_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "engine/parsing/MultiChunkBuffer.h"

namespace DicomEngine {

class BufferReader {
 public:
  // The undefined length, which CreateSubReader takes for all that is left.
  static constexpr std::uint32_t kUndefinedLength = 0xFFFFFFFF;

  // A reader over the whole row, at its first byte.
  explicit BufferReader(halvorine::MultiChunkBuffer chunks);
  BufferReader(const BufferReader&) = delete;
  BufferReader& operator=(const BufferReader&) = delete;

  // True when count more bytes lie before end; never fails, also for counts near 2^32.
  bool HasBytes(std::uint32_t count) const;
  // Fails unless HasBytes(count).
  void EnsureAvailable(std::uint32_t count) const;

  void Skip(std::uint32_t count);
  std::uint16_t ReadUnsignedShort() { return ReadNumber<std::uint16_t>(); }
  std::uint32_t ReadUnsignedLong() { return ReadNumber<std::uint32_t>(); }
  std::int32_t ReadSignedLong();
  // Consume count bytes. The value starts as zero and takes the first of them, up to its width:
  // fewer bytes leave its high part zero, more are consumed and dropped.
  float ReadFloat(std::uint32_t count);
  double ReadDouble(std::uint32_t count);
  // Consumes count bytes and keeps those before the first NUL; nothing else is trimmed.
  std::string ReadString(std::uint32_t count);
  // The same into text, whose buffer is reused.
  void ReadString(std::uint32_t count, std::string& text);
  // Puts a new block of count bytes into *dest, which must not be null. For count 0 *dest is left
  // as it was.
  void ReadBinary(std::unique_ptr<std::uint8_t[]>* dest, std::uint32_t count);

  // The next count bytes, without moving, when they lie before end and in one chunk; else null.
  const std::uint8_t* Peek(std::uint32_t count) {
    return HasBytes(count) ? Contiguous(count) : nullptr;
  }

  // A reader over the next count bytes (kUndefinedLength: all that is left), at this one's
  // position; null if it can't be allocated. It shares the row and moves this reader as it reads,
  // so it must not outlive this reader, which isn't read on its own while it is in use.
  std::unique_ptr<BufferReader> CreateSubReader(std::uint32_t count);

 private:
  // The position of a root reader and all its nested readers, and the chunk it stands in, so
  // that a read inside that chunk neither searches nor calls out.
  struct Cursor {
    std::uint32_t position = 0;
    std::size_t chunkHint = 0;
    halvorine::MultiChunkBuffer::Window window;
  };

  BufferReader(BufferReader* parent, std::uint32_t end);

  // A number of its own width. Inline, since the parser reads several per element: inside the
  // current chunk it is two bounds tests and a copy.
  template <typename Unsigned>
  Unsigned ReadNumber() {
    const std::uint64_t from = cursor_->position;
    const halvorine::MultiChunkBuffer::Window& window = cursor_->window;
    if (std::endian::native != std::endian::little || from + sizeof(Unsigned) > end_ ||
        from < window.start || from + sizeof(Unsigned) > window.end) {
      return ReadLittleEndian<Unsigned>(sizeof(Unsigned));
    }
    Unsigned value;
    std::memcpy(&value, window.data + (from - window.start), sizeof value);
    cursor_->position += sizeof value;
    return value;
  }
  template <typename Unsigned>
  Unsigned ReadLittleEndian(std::uint32_t count);
  // Copies from position without moving it.
  void CopyOut(std::uint8_t* destination, std::uint32_t count);
  // The count bytes at position when one chunk holds them all, else null.
  const std::uint8_t* Contiguous(std::uint32_t count);
  // Moves this reader and all its ancestors.
  void Advance(std::uint32_t count) { cursor_->position += count; }

  std::uint32_t end_;
  // Shared, never copied: a copy of the row per item would make parsing cost items times chunks.
  std::shared_ptr<halvorine::MultiChunkBuffer> chunks_;
  Cursor ownCursor_;  // used by a root reader only
  Cursor* cursor_;    // the root's
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_PARSING_BUFFERREADER_H
