#include "engine/parsing/MultiChunkBuffer.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"

namespace halvorine {
namespace {

using DicomEngine::Bytes;

bool IsClosed(int descriptor) { return fcntl(descriptor, F_GETFD) == -1 && errno == EBADF; }

// Chunks may claim more bytes than they hold: nothing here reads them.
TEST(MultiChunkBufferTest, LengthCountsChunksWithBytesUpToTheLargest32BitNumber) {
  MultiChunkBuffer buffer;
  EXPECT_EQ(buffer.GetLength(), 0u);
  const std::uint8_t bytes[4] = {};
  buffer.AddChunk(bytes, 4);
  buffer.AddChunk(nullptr, 7);
  buffer.AddChunk(DicomEngine::Block({1, 2}), 2);
  buffer.AddChunk(bytes, 0);
  EXPECT_EQ(buffer.GetLength(), 6u);
  EXPECT_EQ(buffer.GetChunkCount(), 4u);
  buffer.AddChunk(bytes, 0xFFFFFFF0 - 6);
  EXPECT_EQ(buffer.GetLength(), 0xFFFFFFF0u);
  buffer.AddChunk(bytes, 0x20);
  EXPECT_EQ(buffer.GetLength(), 0xFFFFFFFFu);
}

// A copy of the buffer keeps the bytes when the original is gone; a range beyond the row fails.
TEST(MultiChunkBufferTest, CopiesEveryRangeWhateverTheHint) {
  const std::string flat = "abcdefghijklmnop";
  MultiChunkBuffer buffer;
  {
    const MultiChunkBuffer original = DicomEngine::Chunked(flat, {0, 3, 3, 3, 8, 9, 9, 16});
    buffer = original;
  }
  ASSERT_EQ(buffer.GetLength(), flat.size());
  for (std::size_t startHint : {std::size_t{0}, std::size_t{4}, std::size_t{8}, std::size_t{99}}) {
    for (std::uint32_t offset = 0; offset <= flat.size(); ++offset) {
      for (std::uint32_t count = 1; offset + count <= flat.size() + 1; ++count) {
        std::string copy(count, '\0');
        std::size_t hint = startHint;
        const bool inside = offset + count <= flat.size();
        ASSERT_EQ(
            buffer.CopyOut(offset, reinterpret_cast<std::uint8_t*>(copy.data()), count, &hint),
            inside);
        if (inside) {
          EXPECT_EQ(copy, flat.substr(offset, count))
              << "offset " << offset << ", count " << count << ", hint " << startHint;
        }
      }
    }
  }
}

// What a reader has passed it lets go of: the offsets stay, and another copy keeps every byte.
TEST(MultiChunkBufferTest, ReleasedChunksKeepTheirOffsetsAndOtherCopiesTheirBytes) {
  const std::string flat = "abcdefghij";
  const MultiChunkBuffer kept = DicomEngine::Chunked(flat, {3, 6});
  MultiChunkBuffer released = kept;
  released.ReleaseBefore(2);
  EXPECT_EQ(released.GetLength(), flat.size());
  std::string tail(4, '\0');
  std::string whole(flat.size(), '\0');
  std::size_t hint = 0;
  ASSERT_TRUE(released.CopyOut(6, reinterpret_cast<std::uint8_t*>(tail.data()), 4, &hint));
  EXPECT_EQ(tail, "ghij");
  ASSERT_TRUE(kept.CopyOut(0, reinterpret_cast<std::uint8_t*>(whole.data()), 10, &hint));
  EXPECT_EQ(whole, flat);
}

// The rest of the file from where the stream stands, in chunks of 16 KiB; a multiple of the chunk
// size ends with one empty chunk. A failed read is traced, and the stream is closed either way.
TEST(MultiChunkBufferTest, ReadsTheRestOfTheFileInChunksAndClosesIt) {
  TempFolder temp;
  GetTraceLog().Initialize(ToWide(temp.Path("trace.log")), 1);
  const std::pair<std::size_t, std::size_t> cases[] = {
      {0, 1}, {16383, 1}, {16384, 2}, {16385, 2}, {3 * 16384, 4}, {3 * 16384 + 5, 4}};
  for (const auto& [size, chunks] : cases) {
    std::string content(size + 3, '\0');
    for (std::size_t index = 0; index < content.size(); ++index) content[index] = char(index * 7);
    WriteWholeFile(temp.Path("file"), content);
    std::FILE* stream = std::fopen(temp.Path("file").c_str(), "rb");
    ASSERT_EQ(std::fseek(stream, 3, SEEK_SET), 0);
    const int descriptor = fileno(stream);
    MultiChunkBuffer buffer;
    ASSERT_TRUE(ReadBinaryFileIntoBuffer(stream, &buffer));
    EXPECT_TRUE(IsClosed(descriptor));
    EXPECT_EQ(buffer.GetChunkCount(), chunks) << size;
    std::string read(buffer.GetLength(), '\0');
    std::size_t hint = 0;
    buffer.CopyOut(0, reinterpret_cast<std::uint8_t*>(read.data()), buffer.GetLength(), &hint);
    EXPECT_EQ(read, content.substr(3)) << size;
  }
  // A folder opens as a stream, and its first read fails.
  std::FILE* stream = std::fopen(temp.MakeFolder("folder").c_str(), "rb");
  const int descriptor = fileno(stream);
  MultiChunkBuffer buffer;
  EXPECT_FALSE(ReadBinaryFileIntoBuffer(nullptr, &buffer));
  EXPECT_FALSE(ReadBinaryFileIntoBuffer(stream, &buffer));
  EXPECT_TRUE(IsClosed(descriptor));
  EXPECT_EQ(buffer.GetChunkCount(), 0u);
  EXPECT_NE(ReadWholeFile(temp.Path("trace.log"))
                .find(" --- ReadBinaryFileIntoBuffer failed with error 1.\r\n"),
            std::string::npos);
}

}  // namespace
}  // namespace halvorine
