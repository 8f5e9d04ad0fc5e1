#include "engine/parsing/BufferReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "support/MyException.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "BufferReader";

}  // namespace

BufferReader::BufferReader(halvorine::MultiChunkBuffer chunks)
    : end_(chunks.GetLength()),
      chunks_(std::make_shared<halvorine::MultiChunkBuffer>(std::move(chunks))),
      cursor_(&ownCursor_) {}

BufferReader::BufferReader(BufferReader* parent, std::uint32_t end)
    : end_(end), chunks_(parent->chunks_), cursor_(parent->cursor_) {}

bool BufferReader::HasBytes(std::uint32_t count) const {
  return std::uint64_t{cursor_->position} + count <= end_;
}

void BufferReader::EnsureAvailable(std::uint32_t count) const {
  if (!HasBytes(count)) {
    halvorine::Raise(kUnit, __LINE__,
                     "The buffer is not long enough to perform the requested read operation.");
  }
}

void BufferReader::Skip(std::uint32_t count) {
  EnsureAvailable(count);
  Advance(count);
}

std::int32_t BufferReader::ReadSignedLong() {
  return static_cast<std::int32_t>(ReadLittleEndian<std::uint32_t>(4));
}

float BufferReader::ReadFloat(std::uint32_t count) {
  return std::bit_cast<float>(ReadLittleEndian<std::uint32_t>(count));
}

double BufferReader::ReadDouble(std::uint32_t count) {
  return std::bit_cast<double>(ReadLittleEndian<std::uint64_t>(count));
}

std::string BufferReader::ReadString(std::uint32_t count) {
  std::string text;
  ReadString(count, text);
  return text;
}

void BufferReader::ReadString(std::uint32_t count, std::string& text) {
  text.clear();
  if (count == 0) return;
  EnsureAvailable(count);
  if (const std::uint8_t* inChunk = Contiguous(count)) {
    text.assign(reinterpret_cast<const char*>(inChunk), count);
  } else {
    text.resize(count);
    CopyOut(reinterpret_cast<std::uint8_t*>(text.data()), count);
  }
  Advance(count);
  if (const std::size_t nul = text.find('\0'); nul != std::string::npos) text.resize(nul);
}

void BufferReader::ReadBinary(std::unique_ptr<std::uint8_t[]>* dest, std::uint32_t count) {
  if (dest == nullptr)
    halvorine::Raise(kUnit, __LINE__, "The binary buffer to read into is empty.");
  if (count == 0) return;
  EnsureAvailable(count);
  std::unique_ptr<std::uint8_t[]> block(new (std::nothrow) std::uint8_t[count]);
  if (!block) halvorine::Raise(kUnit, __LINE__, "Memory allocation failure.");
  CopyOut(block.get(), count);
  Advance(count);
  *dest = std::move(block);
}

std::unique_ptr<BufferReader> BufferReader::CreateSubReader(std::uint32_t count) {
  if (count == kUndefinedLength) count = end_ - cursor_->position;
  EnsureAvailable(count);
  return std::unique_ptr<BufferReader>(new (std::nothrow)
                                           BufferReader(this, cursor_->position + count));
}

template <typename Unsigned>
Unsigned BufferReader::ReadLittleEndian(std::uint32_t count) {
  EnsureAvailable(count);
  std::array<std::uint8_t, sizeof(Unsigned)> bytes{};
  // The usual case, a whole number inside one chunk, copies a constant size.
  if (const std::uint8_t* inChunk = count == bytes.size() ? Contiguous(count) : nullptr) {
    std::memcpy(bytes.data(), inChunk, bytes.size());
  } else {
    CopyOut(bytes.data(), std::min<std::uint32_t>(count, bytes.size()));
  }
  Advance(count);
  Unsigned value = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&value, bytes.data(), bytes.size());
  } else {
    for (std::size_t index = bytes.size(); index-- > 0;) {
      value = static_cast<Unsigned>(value << 8 | bytes[index]);
    }
  }
  return value;
}

// For ReadNumber, which calls them from the header.
template std::uint16_t BufferReader::ReadLittleEndian<std::uint16_t>(std::uint32_t count);
template std::uint32_t BufferReader::ReadLittleEndian<std::uint32_t>(std::uint32_t count);

void BufferReader::CopyOut(std::uint8_t* destination, std::uint32_t count) {
  if (count == 0) return;
  EnsureAvailable(count);
  if (const std::uint8_t* bytes = Contiguous(count)) {
    std::memcpy(destination, bytes, count);
    return;
  }
  if (!chunks_->CopyOut(cursor_->position, destination, count, &cursor_->chunkHint)) {
    halvorine::Raise(kUnit, __LINE__, "Cannot find the next memory chunk.");
  }
}

const std::uint8_t* BufferReader::Contiguous(std::uint32_t count) {
  Cursor& cursor = *cursor_;
  const std::uint64_t from = cursor.position;
  if (from < cursor.window.start || from >= cursor.window.end) {
    cursor.window = chunks_->WindowAt(cursor.position, &cursor.chunkHint);
    chunks_->ReleaseBefore(cursor.chunkHint);
  }
  if (from < cursor.window.start || from + count > cursor.window.end) return nullptr;
  return cursor.window.data + (from - cursor.window.start);
}

}  // namespace DicomEngine
