#include "engine/parsing/BufferReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <new>

#include "support/MyException.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "BufferReader";

}  // namespace

BufferReader::BufferReader(halvorine::MultiChunkBuffer chunks)
    : end_(chunks.GetLength()),
      chunks_(std::make_shared<const halvorine::MultiChunkBuffer>(std::move(chunks))),
      parent_(nullptr),
      position_(0),
      chunkHint_(0) {}

BufferReader::BufferReader(BufferReader* parent, std::uint32_t end)
    : end_(end),
      chunks_(parent->chunks_),
      parent_(parent),
      position_(parent->position_),
      chunkHint_(parent->chunkHint_) {}

bool BufferReader::HasBytes(std::uint32_t count) const {
  return std::uint64_t{position_} + count <= end_;
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

std::uint16_t BufferReader::ReadUnsignedShort() { return ReadLittleEndian<std::uint16_t>(2); }

std::uint32_t BufferReader::ReadUnsignedLong() { return ReadLittleEndian<std::uint32_t>(4); }

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
  if (count == 0) return {};
  EnsureAvailable(count);
  std::string text(count, '\0');
  CopyOut(reinterpret_cast<std::uint8_t*>(text.data()), count);
  Advance(count);
  if (const std::size_t nul = text.find('\0'); nul != std::string::npos) text.resize(nul);
  return text;
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
  if (count == kUndefinedLength) count = end_ - position_;
  EnsureAvailable(count);
  return std::unique_ptr<BufferReader>(new (std::nothrow) BufferReader(this, position_ + count));
}

template <typename Unsigned>
Unsigned BufferReader::ReadLittleEndian(std::uint32_t count) {
  EnsureAvailable(count);
  std::array<std::uint8_t, sizeof(Unsigned)> bytes{};
  CopyOut(bytes.data(), std::min<std::uint32_t>(count, bytes.size()));
  Advance(count);
  Unsigned value = 0;
  for (std::size_t index = bytes.size(); index-- > 0;) {
    value = static_cast<Unsigned>(value << 8 | bytes[index]);
  }
  return value;
}

void BufferReader::CopyOut(std::uint8_t* destination, std::uint32_t count) {
  if (count == 0) return;
  EnsureAvailable(count);
  if (!chunks_->CopyOut(position_, destination, count, &chunkHint_)) {
    halvorine::Raise(kUnit, __LINE__, "Cannot find the next memory chunk.");
  }
}

void BufferReader::Advance(std::uint32_t count) {
  for (BufferReader* reader = this; reader != nullptr; reader = reader->parent_) {
    reader->position_ += count;
  }
}

}  // namespace DicomEngine
