#include "engine/parsing/MultiChunkBuffer.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"

namespace halvorine {
namespace {

std::unique_ptr<std::uint8_t[]> OwnedCopy(const std::vector<std::uint8_t>& bytes) {
  auto block = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), block.get());
  return block;
}

// A row of owned chunks of the given sizes holding 1, 2, 3, ... and those bytes in one block.
MultiChunkBuffer NumberedRow(const std::vector<std::uint32_t>& sizes,
                             std::vector<std::uint8_t>* flat) {
  MultiChunkBuffer buffer;
  for (std::uint32_t size : sizes) {
    std::vector<std::uint8_t> chunk;
    while (chunk.size() < size) {
      chunk.push_back(static_cast<std::uint8_t>(flat->size() + chunk.size() + 1));
    }
    flat->insert(flat->end(), chunk.begin(), chunk.end());
    buffer.AddChunk(OwnedCopy(chunk), size);
  }
  return buffer;
}

bool IsClosed(int descriptor) { return fcntl(descriptor, F_GETFD) == -1 && errno == EBADF; }

// Chunks may claim more bytes than they hold: nothing here reads them.
TEST(MultiChunkBufferTest, LengthCountsChunksWithBytesUpToTheLargest32BitNumber) {
  MultiChunkBuffer buffer;
  EXPECT_EQ(buffer.GetLength(), 0u);
  const std::uint8_t bytes[4] = {};
  buffer.AddChunk(bytes, 4);
  buffer.AddChunk(nullptr, 7);
  buffer.AddChunk(OwnedCopy({1, 2}), 2);
  buffer.AddChunk(bytes, 0);
  EXPECT_EQ(buffer.GetLength(), 6u);
  EXPECT_EQ(buffer.GetChunkCount(), 4u);
  buffer.AddChunk(bytes, 0xFFFFFFF0 - 6);
  EXPECT_EQ(buffer.GetLength(), 0xFFFFFFF0u);
  buffer.AddChunk(bytes, 0x20);
  EXPECT_EQ(buffer.GetLength(), 0xFFFFFFFFu);
}

TEST(MultiChunkBufferTest, CopiesEveryRangeWhateverTheHint) {
  std::vector<std::uint8_t> flat;
  const MultiChunkBuffer buffer = NumberedRow({0, 3, 0, 0, 5, 1, 0, 7, 0}, &flat);
  ASSERT_EQ(buffer.GetLength(), flat.size());
  for (std::size_t startHint : {std::size_t{0}, std::size_t{4}, std::size_t{8}, std::size_t{99}}) {
    for (std::uint32_t offset = 0; offset < flat.size(); ++offset) {
      for (std::uint32_t count = 1; offset + count <= flat.size(); ++count) {
        std::vector<std::uint8_t> copy(count);
        std::size_t hint = startHint;
        ASSERT_TRUE(buffer.CopyOut(offset, copy.data(), count, &hint));
        EXPECT_EQ(copy,
                  std::vector<std::uint8_t>(flat.begin() + offset, flat.begin() + offset + count))
            << "offset " << offset << ", count " << count << ", hint " << startHint;
      }
    }
  }
}

// A copy of the buffer keeps the bytes when the original is gone; a range beyond the row fails.
TEST(MultiChunkBufferTest, CopiesShareTheBytesBeyondTheOriginal) {
  std::vector<std::uint8_t> flat;
  MultiChunkBuffer copy;
  {
    const MultiChunkBuffer original = NumberedRow({3, 2}, &flat);
    copy = original;
  }
  std::uint8_t bytes[5];
  std::size_t hint = 0;
  ASSERT_TRUE(copy.CopyOut(0, bytes, 5, &hint));
  EXPECT_EQ(std::vector<std::uint8_t>(bytes, bytes + 5), flat);
  EXPECT_FALSE(copy.CopyOut(4, bytes, 2, &hint));
  EXPECT_FALSE(copy.CopyOut(5, bytes, 1, &hint));
}

struct FileCase {
  std::size_t size;
  std::size_t chunks;
};

class ReadBinaryFileTest : public testing::TestWithParam<FileCase> {};

TEST_P(ReadBinaryFileTest, ReadsTheRestOfTheFileInChunksAndClosesIt) {
  TempFolder temp;
  std::string content(GetParam().size + 3, '\0');
  for (std::size_t index = 0; index < content.size(); ++index) content[index] = char(index * 7);
  WriteWholeFile(temp.Path("file"), content);
  std::FILE* stream = std::fopen(temp.Path("file").c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  ASSERT_EQ(std::fseek(stream, 3, SEEK_SET), 0);
  const int descriptor = fileno(stream);

  MultiChunkBuffer buffer;
  ASSERT_TRUE(ReadBinaryFileIntoBuffer(stream, &buffer));
  EXPECT_TRUE(IsClosed(descriptor));
  EXPECT_EQ(buffer.GetChunkCount(), GetParam().chunks);
  ASSERT_EQ(buffer.GetLength(), GetParam().size);
  std::string read(GetParam().size, '\0');
  std::size_t hint = 0;
  ASSERT_TRUE(
      buffer.CopyOut(0, reinterpret_cast<std::uint8_t*>(read.data()), GetParam().size, &hint));
  EXPECT_EQ(read, content.substr(3));
}

// A size that is a multiple of the chunk size ends with one empty chunk.
INSTANTIATE_TEST_SUITE_P(Sizes, ReadBinaryFileTest,
                         testing::Values(FileCase{0, 1}, FileCase{1, 1}, FileCase{16383, 1},
                                         FileCase{16384, 2}, FileCase{16385, 2},
                                         FileCase{3 * 16384 + 5, 4}, FileCase{3 * 16384, 4}));

// A null stream gives false too.
TEST(ReadBinaryFileIntoBufferTest, ReadErrorIsTracedAndClosesTheStream) {
  TempFolder temp;
  GetTraceLog().Initialize(ToWide(temp.Path("trace.log")), 1);
  // A folder opens as a stream, and its first read fails.
  std::FILE* stream = std::fopen(temp.MakeFolder("folder").c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  const int descriptor = fileno(stream);

  MultiChunkBuffer buffer;
  EXPECT_FALSE(ReadBinaryFileIntoBuffer(nullptr, &buffer));
  EXPECT_FALSE(ReadBinaryFileIntoBuffer(stream, &buffer));
  EXPECT_TRUE(IsClosed(descriptor));
  EXPECT_EQ(buffer.GetChunkCount(), 0u);
  const std::string trace = ReadWholeFile(temp.Path("trace.log"));
  EXPECT_NE(trace.find(" --- ReadBinaryFileIntoBuffer failed with error 1.\r\n"), std::string::npos)
      << trace;
}

}  // namespace
}  // namespace halvorine
