#include "engine/parsing/BufferReader.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "engine/EngineTestSupport.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;

BufferReader ReaderOver(const std::string& bytes, const std::vector<std::size_t>& cuts = {}) {
  return BufferReader(Chunked(bytes, cuts));
}

bool HasExactly(const BufferReader& reader, std::uint32_t count) {
  return reader.HasBytes(count) && !reader.HasBytes(count + 1);
}

bool IsTooShort(const std::string& message) {
  return IsPlaced(message, "The buffer is not long enough to perform the requested read operation.",
                  "BufferReader");
}

// Every byte a chunk of its own, with empty chunks between: every value straddles borders.
TEST(BufferReaderTest, ValuesAreLittleEndianAcrossChunkBorders) {
  // 0x1234, 0x12345678, -2, 1.0f, 1.5, a float of 6 bytes, a double of 2, "ab\0cd", " e  ", bytes
  const std::string bytes(
      "\x34\x12\x78\x56\x34\x12\xFE\xFF\xFF\xFF\x00\x00\x80\x3F\x00\x00\x00\x00\x00\x00\xF8\x3F"
      "\x00\x00\x80\x3F\xAA\xBB\x01\x02"
      "ab\0cd e  \x01\x02\x03",
      42);
  std::vector<std::size_t> cuts;
  for (std::size_t index = 0; index < bytes.size(); ++index) cuts.insert(cuts.end(), 2, index);
  BufferReader reader = ReaderOver(bytes, cuts);
  EXPECT_EQ(reader.ReadUnsignedShort(), 0x1234u);
  EXPECT_EQ(reader.ReadUnsignedLong(), 0x12345678u);
  EXPECT_EQ(reader.ReadSignedLong(), -2);
  EXPECT_EQ(reader.ReadFloat(4), 1.0f);
  EXPECT_EQ(reader.ReadDouble(8), 1.5);
  EXPECT_EQ(reader.ReadFloat(0), 0.0f);
  EXPECT_EQ(reader.ReadFloat(6), 1.0f);  // consumes the two bytes behind the value
  EXPECT_EQ(reader.ReadDouble(2), std::bit_cast<double>(std::uint64_t{0x0201}));
  EXPECT_EQ(reader.ReadString(4), "ab");  // up to the first NUL; blanks are kept
  EXPECT_EQ(reader.ReadString(5), "d e  ");
  std::unique_ptr<std::uint8_t[]> block;
  reader.ReadBinary(&block, 3);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(Bytes(block.get(), block.get() + 3), (Bytes{1, 2, 3}));
  // At the end only empty reads succeed.
  EXPECT_TRUE(HasExactly(reader, 0));
  reader.Skip(0);
  EXPECT_EQ(reader.ReadString(0), "");
  const std::uint8_t* kept = block.get();
  reader.ReadBinary(&block, 0);
  EXPECT_EQ(block.get(), kept);
  EXPECT_TRUE(IsTooShort(RaisedMessage([&] { reader.ReadUnsignedShort(); })));
}

TEST(BufferReaderTest, ReadsPastTheEndFailAndLeaveThePosition) {
  std::unique_ptr<std::uint8_t[]> block;
  const std::vector<std::pair<const char*, std::function<void(BufferReader&)>>> cases = {
      {"Skip", [](BufferReader& r) { r.Skip(4); }},
      {"Skip undefined", [](BufferReader& r) { r.Skip(0xFFFFFFFF); }},
      {"ReadUnsignedLong", [](BufferReader& r) { r.ReadUnsignedLong(); }},
      {"ReadDouble near 2^32", [](BufferReader& r) { r.ReadDouble(0xFFFFFFFE); }},
      {"ReadString", [](BufferReader& r) { r.ReadString(4); }},
      {"ReadString near 2^32", [](BufferReader& r) { r.ReadString(0xFFFFFFFF); }},
      {"ReadBinary", [&](BufferReader& r) { r.ReadBinary(&block, 4); }},
      {"ReadBinary near 2^32", [&](BufferReader& r) { r.ReadBinary(&block, 0xFFFFFFFF); }},
      {"CreateSubReader near 2^32", [](BufferReader& r) { r.CreateSubReader(0xFFFFFFFE); }},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.first);
    BufferReader reader = ReaderOver("\x09\x09\x01\x02\x03", {3});
    reader.Skip(2);
    EXPECT_TRUE(IsTooShort(RaisedMessage([&] { row.second(reader); })));
    EXPECT_TRUE(HasExactly(reader, 3));
    EXPECT_EQ(reader.ReadUnsignedShort(), 0x0201u);
    EXPECT_EQ(block, nullptr);
  }
  // Binary needs a destination before anything else.
  BufferReader reader = ReaderOver("\x01\x02");
  for (std::uint32_t count : {0u, 1u, 0xFFFFFFFFu}) {
    EXPECT_TRUE(IsPlaced(RaisedMessage([&] { reader.ReadBinary(nullptr, count); }),
                         "The binary buffer to read into is empty.", "BufferReader"));
  }
  EXPECT_TRUE(HasExactly(reader, 2));
}

TEST(BufferReaderTest, NestedReadersAreBoundedAndMoveAllTheirAncestors) {
  std::string bytes(20, '\0');
  for (std::size_t index = 0; index < bytes.size(); ++index) bytes[index] = char(index);
  BufferReader root = ReaderOver(bytes, {7, 13});
  root.Skip(2);
  {
    std::unique_ptr<BufferReader> item = root.CreateSubReader(10);
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(HasExactly(*item, 10));
    EXPECT_EQ(item->ReadUnsignedShort(), 0x0302u);
    {
      std::unique_ptr<BufferReader> inner = item->CreateSubReader(4);
      EXPECT_EQ(inner->ReadUnsignedShort(), 0x0504u);
      EXPECT_TRUE(HasExactly(*inner, 2));
      EXPECT_TRUE(IsTooShort(RaisedMessage([&] { inner->ReadUnsignedLong(); })));
      inner->Skip(2);
    }
    EXPECT_TRUE(HasExactly(*item, 4));
    EXPECT_EQ(item->ReadUnsignedShort(), 0x0908u);
    item->Skip(2);
    // The item's end stands before the root's: its next byte is out of its reach.
    EXPECT_TRUE(IsTooShort(RaisedMessage([&] { item->Skip(1); })));
  }
  EXPECT_TRUE(HasExactly(root, 8));
  EXPECT_EQ(root.ReadUnsignedShort(), 0x0D0Cu);
  // An undefined length takes all that is left, of an item or of the root.
  std::unique_ptr<BufferReader> item = root.CreateSubReader(5);
  item->Skip(1);
  EXPECT_TRUE(HasExactly(*item->CreateSubReader(BufferReader::kUndefinedLength), 4));
  EXPECT_TRUE(HasExactly(*root.CreateSubReader(BufferReader::kUndefinedLength), 5));
}

TEST(BufferReaderTest, OffsetsNearTwoToThe32DontWrap) {
  // The first chunk claims more bytes than it holds: it is skipped, never read.
  static const std::uint8_t kUnread[1] = {};
  const std::uint8_t tail[15] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  halvorine::MultiChunkBuffer buffer;
  buffer.AddChunk(kUnread, 0xFFFFFFF0);
  buffer.AddChunk(tail, 15);
  BufferReader reader(std::move(buffer));
  EXPECT_TRUE(reader.HasBytes(0xFFFFFFFF));
  reader.Skip(0xFFFFFFF0);
  EXPECT_EQ(reader.ReadUnsignedLong(), 0x04030201u);
  std::unique_ptr<BufferReader> item = reader.CreateSubReader(BufferReader::kUndefinedLength);
  EXPECT_TRUE(HasExactly(*item, 11));
  item->Skip(8);
  for (std::uint32_t count : {4u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
    EXPECT_TRUE(IsTooShort(RaisedMessage([&] { item->Skip(count); }))) << count;
    EXPECT_FALSE(item->HasBytes(count)) << count;
  }
  EXPECT_EQ(item->ReadString(3), "\x0D\x0E\x0F");
  EXPECT_FALSE(reader.HasBytes(1));
}

}  // namespace
}  // namespace DicomEngine
