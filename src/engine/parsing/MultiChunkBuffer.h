// A file held in memory as a row of separately allocated chunks, so that no allocation larger
// than one chunk is needed to hold it. Offsets count from the first byte of the first chunk:
//
//   chunk 0            chunk 1   chunk 2 (empty)  chunk 3
//   [0 ........ 16383] [16384 .. ][               ][ ... GetLength() - 1]
//
// A value may straddle a border; a zero-length chunk holds no offset. Copies share the bytes.
#ifndef HALVORINE_ENGINE_PARSING_MULTICHUNKBUFFER_H
#define HALVORINE_ENGINE_PARSING_MULTICHUNKBUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace halvorine {

class MultiChunkBuffer {
 public:
  // The bytes are freed with the last copy of the buffer that holds the chunk.
  void AddChunk(std::unique_ptr<std::uint8_t[]> data, std::uint32_t length);
  // The caller keeps the bytes, and keeps them alive as long as any copy of the buffer is read.
  void AddChunk(const std::uint8_t* data, std::uint32_t length);

  // The bytes of all chunks that have any. A row longer than 2^32 - 1 bytes is read up to there.
  std::uint32_t GetLength() const;
  std::size_t GetChunkCount() const { return chunks_.size(); }

  // Copies count bytes from offset on, across chunk borders. hint names the chunk where the search
  // for offset begins and is left on the chunk where copying ended, so that a cursor moving
  // forward finds its chunk at once; any value is correct. False when the row ends first.
  bool CopyOut(std::uint32_t offset, std::uint8_t* destination, std::uint32_t count,
               std::size_t* hint) const;

  // The bytes of one chunk, for readers that read inside it without a call per read.
  struct Window {
    const std::uint8_t* data = nullptr;
    std::uint64_t start = 0;  // the row offset of data[0]
    std::uint64_t end = 0;    // behind the chunk's last byte
  };
  // The chunk that holds offset, found as CopyOut finds it; an empty window past the row's end.
  Window WindowAt(std::uint32_t offset, std::size_t* hint) const;

  // Lets go of the bytes of the chunks before index, for a reader that never goes back: they are
  // freed unless another copy holds them. Lengths and offsets stay as they were.
  void ReleaseBefore(std::size_t index);

 private:
  struct MemoryChunk {
    std::shared_ptr<const std::uint8_t[]> data;
    std::uint32_t length = 0;
    std::uint64_t end = 0;  // offset behind its last byte
  };

  void Append(std::shared_ptr<const std::uint8_t[]> data, std::uint32_t length);
  std::size_t FindChunk(std::uint64_t offset, std::size_t hint) const;

  std::vector<MemoryChunk> chunks_;
  std::size_t released_ = 0;  // the chunks before it hold no bytes
};

// Reads stream from where it stands to its end into buffer, in chunks of kReadChunkSize bytes;
// a file whose size is a multiple of that ends with one empty chunk. Closes a stream it is given,
// also on failure. A read error is traced at level 1 and gives false; a null stream gives false.
inline constexpr std::uint32_t kReadChunkSize = 16384;
bool ReadBinaryFileIntoBuffer(std::FILE* stream, MultiChunkBuffer* buffer);

}  // namespace halvorine

#endif  // HALVORINE_ENGINE_PARSING_MULTICHUNKBUFFER_H
