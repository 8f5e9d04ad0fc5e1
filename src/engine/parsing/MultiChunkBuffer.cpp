#include "engine/parsing/MultiChunkBuffer.h"

#include <algorithm>
#include <limits>

#include "support/MyException.h"
#include "support/TraceLog.h"

namespace halvorine {

void MultiChunkBuffer::AddChunk(std::unique_ptr<std::uint8_t[]> data, std::uint32_t length) {
  Append(std::move(data), length);
}

void MultiChunkBuffer::AddChunk(const std::uint8_t* data, std::uint32_t length) {
  Append(std::shared_ptr<const std::uint8_t[]>(data, [](const std::uint8_t*) {}), length);
}

void MultiChunkBuffer::Append(std::shared_ptr<const std::uint8_t[]> data, std::uint32_t length) {
  // A chunk without bytes counts as empty, for the length and for reads alike.
  const std::uint32_t counted = data ? length : 0;
  const std::uint64_t start = chunks_.empty() ? 0 : chunks_.back().end;
  chunks_.push_back(MemoryChunk{std::move(data), counted, start + counted});
}

std::uint32_t MultiChunkBuffer::GetLength() const {
  if (chunks_.empty()) return 0;
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(chunks_.back().end, std::numeric_limits<std::uint32_t>::max()));
}

bool MultiChunkBuffer::CopyOut(std::uint32_t offset, std::uint8_t* destination, std::uint32_t count,
                               std::size_t* hint) const {
  std::size_t index = FindChunk(offset, *hint);
  std::uint64_t at = offset;
  while (count > 0) {
    if (index == chunks_.size()) return false;
    const MemoryChunk& chunk = chunks_[index];
    const std::uint64_t start = chunk.end - chunk.length;
    const auto taken = static_cast<std::uint32_t>(std::min<std::uint64_t>(count, chunk.end - at));
    destination = std::copy_n(chunk.data.get() + (at - start), taken, destination);
    at += taken;
    count -= taken;
    if (at == chunk.end) ++index;
  }
  *hint = index;
  return true;
}

MultiChunkBuffer::Window MultiChunkBuffer::WindowAt(std::uint32_t offset, std::size_t* hint) const {
  *hint = FindChunk(offset, *hint);
  if (*hint == chunks_.size()) return Window{};
  const MemoryChunk& chunk = chunks_[*hint];
  return Window{chunk.data.get(), chunk.end - chunk.length, chunk.end};
}

void MultiChunkBuffer::ReleaseBefore(std::size_t index) {
  for (; released_ < std::min(index, chunks_.size()); ++released_) chunks_[released_].data.reset();
}

std::size_t MultiChunkBuffer::FindChunk(std::uint64_t offset, std::size_t hint) const {
  if (hint < chunks_.size()) {
    const MemoryChunk& chunk = chunks_[hint];
    if (chunk.end - chunk.length <= offset && offset < chunk.end) return hint;
  }
  // The first chunk whose end lies behind offset holds it; empty chunks never do.
  const auto found = std::ranges::upper_bound(chunks_, offset, {}, &MemoryChunk::end);
  return static_cast<std::size_t>(found - chunks_.begin());
}

bool ReadBinaryFileIntoBuffer(std::FILE* stream, MultiChunkBuffer* buffer) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> owned(stream, &std::fclose);
  if (stream == nullptr) return false;
  for (;;) {
    auto chunk = std::make_unique_for_overwrite<std::uint8_t[]>(kReadChunkSize);
    const std::size_t count = std::fread(chunk.get(), 1, kReadChunkSize, stream);
    if (std::ferror(stream) != 0) {
      Trace(FormatBounded(kMessageBufferSize, "ReadBinaryFileIntoBuffer failed with error %d.",
                          std::ferror(stream)),
            1);
      return false;
    }
    const bool last = std::feof(stream) != 0 || count < kReadChunkSize;
    buffer->AddChunk(std::move(chunk), static_cast<std::uint32_t>(count));
    if (last) return true;
  }
}

}  // namespace halvorine
