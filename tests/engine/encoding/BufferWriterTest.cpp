#include "engine/encoding/BufferWriter.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "RaisedMessage.h"
#include "engine/encoding/HexText.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;

constexpr char kExplicitUid[] = "1.2.840.10008.1.2.1";
constexpr char kImplicitUid[] = "1.2.840.10008.1.2";

// The syntax comes from a known UID, implicit for group FFFE; the long forms of an explicit
// stream are left to FileWriterDcmtkTest.
TEST(BufferWriterTest, HeaderFieldsFollowSyntaxGroupAndCode) {
  const struct {
    const char* uid;
    std::uint16_t group;
    const char* code;
    const char* bytes;
  } cases[] = {
      {kExplicitUid, 0x0008, "OT", "4F 54 78 56"},
      {kExplicitUid, 0x0008, "UT", "55 54 00 00 78 56 34 12"},
      {kExplicitUid, 0x0008, "", "20 20 78 56"},
      {kExplicitUid, 0x0008, "A", "41 20 78 56"},
      {kExplicitUid, 0xFFFE, "SQ", "78 56 34 12"},
      {"1.2.840.10008.1.2.2", 0x0008, "OB", "4F 42 00 00 78 56 34 12"},
      {kImplicitUid, 0x0008, "OB", "78 56 34 12"},
      {kImplicitUid, 0x0002, "US", "78 56 34 12"},
      {"", 0x0008, "US", "55 53 78 56"},
      {"", 0x0008, "SQ", "53 51 00 00 78 56 34 12"},
  };
  for (const auto& test : cases) {
    BufferWriter writer(test.uid);
    writer.WriteVRCode(test.group, test.code);
    writer.WriteLength(test.group, test.code, 0x12345678);
    EXPECT_EQ(StreamOf(writer), test.bytes) << test.uid << " " << test.group << " " << test.code;
  }
}

TEST(BufferWriterTest, TextsTakeBlanksToAnEvenLengthAndUidsNulsToTheLength) {
  const struct {
    void (BufferWriter::*write)(std::string_view, std::uint32_t);
    std::string text;
    std::uint32_t length;
    const char* bytes;
  } cases[] = {
      {&BufferWriter::WriteText, "ABC", 0, ""},
      {&BufferWriter::WriteText, "ABC", 5, "41 42 43 20 20 20"},
      {&BufferWriter::WriteText, "", 3, "20 20 20 20"},
      {&BufferWriter::WriteText, "ABCDE", 2, "41 42 43 44 45"},
      {&BufferWriter::WriteText, std::string("AB\0CD", 5), 5, "41 42 20 20 20 20"},
      {&BufferWriter::WriteUid, "1.2", 0, ""},
      {&BufferWriter::WriteUid, "1.2", 3, "31 2E 32"},
      {&BufferWriter::WriteUid, "1.2", 6, "31 2E 32 00 00 00"},
      {&BufferWriter::WriteUid, "1.23", 2, "31 2E 32 33"},
      {&BufferWriter::WriteUid, std::string("1\0.2", 4), 4, "31 00 00 00"},
  };
  for (const auto& test : cases) {
    BufferWriter writer(kExplicitUid);
    (writer.*test.write)(test.text, test.length);
    EXPECT_EQ(StreamOf(writer), test.bytes) << '"' << test.text << "\" " << test.length;
  }
}

// The block grows by the step, or by one larger write; a value across its end grows it first.
TEST(BufferWriterTest, TheBlockGrowsByTheStepOrByOneLargerWrite) {
  const std::vector<std::uint8_t> block(1'000'001, 0x5A);
  const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
      {2, 1'000'000}, {1'000'000, 1'000'000}, {1'000'001, 1'000'001}};
  for (const auto& [count, capacity] : sizes) {
    BufferWriter writer(kExplicitUid);
    writer.WriteBytes(block.data(), count);
    EXPECT_EQ(writer.GetCapacity(), capacity) << count;
  }
  const std::pair<void (*)(BufferWriter&), const char*> cases[] = {
      {[](BufferWriter& w) { w.WriteText("ABCD", 4); }, "5A 41 42 43 44"},
      {[](BufferWriter& w) { w.WriteVRCode(8, "UL"); }, "5A 55 4C"},
      {[](BufferWriter& w) { w.WriteUid("1.2", 4); }, "5A 31 2E 32 00"},
      {[](BufferWriter& w) { w.WriteDouble(1.0); }, "5A 00 00 00 00 00 00 F0 3F"},
  };
  for (const auto& [write, bytes] : cases) {
    BufferWriter writer(kExplicitUid);
    writer.WriteBytes(block.data(), 999'999);
    write(writer);
    EXPECT_EQ(writer.GetCapacity(), 1'999'999u);
    EXPECT_EQ(HexOf(writer.GetBuffer() + 999'998, writer.GetCursor() - 999'998), bytes);
  }
}

TEST(BufferWriterTest, TheCursorAndPatchesStayInsideTheBlock) {
  const std::string beyond = "Attempt to move the buffer writer cursor outside the buffer size.";
  BufferWriter writer(kExplicitUid);
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { writer.SetCursor(1); }), beyond, "BufferWriter");
  writer.WriteUnsignedLong(0);
  writer.WriteUnsignedLong(0);
  writer.WriteUnsignedLongAtPosition(0x44332211, 2);
  writer.WriteUnsignedLongAtPosition(0xDDCCBBAA, 1'000'000 - 4);
  EXPECT_EQ(StreamOf(writer), "00 00 11 22 33 44 00 00");
  EXPECT_EQ(HexOf(writer.GetBuffer() + 1'000'000 - 4, 4), "AA BB CC DD");
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { writer.WriteUnsignedLongAtPosition(1, 999'997); }),
               "WriteUnsignedLongAtPosition failed.", "BufferWriter");
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { writer.SetCursor(1'000'001); }), beyond,
               "BufferWriter");
  writer.SetCursor(1'000'000);
  EXPECT_EQ(writer.GetCursor(), 1'000'000u);
}

TEST(BufferWriterTest, ABlockBeyondFourGibibytesFailsAndLeavesTheWriterAsItWas) {
  BufferWriter writer(kExplicitUid);
  writer.WriteUnsignedShort(0xBEEF);
  const std::uint8_t* buffer = writer.GetBuffer();
  EXPECT_THROW(writer.EnsureCapacity(0xFFFFFFFFull), std::bad_alloc);
  EXPECT_EQ(writer.GetBuffer(), buffer);
  EXPECT_EQ(writer.GetCapacity(), 1'000'000u);
  EXPECT_EQ(StreamOf(writer), "EF BE");
}

}  // namespace
}  // namespace DicomEngine
