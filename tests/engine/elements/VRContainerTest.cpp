#include "engine/elements/VRContainer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "engine/elements/DicomData.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "engine/encoding/HexText.h"
#include "support/MyException.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;

std::unique_ptr<VR> Text(std::uint16_t group, std::uint16_t element, std::string value = "ABCD") {
  return MakeText("LO", group, element, std::move(value));
}

// "(0002,0000) (0002,0010)": the tags in list order.
std::string TagsOf(const VRContainer& container) {
  std::string text;
  for (const auto& element : container.Elements()) {
    if (!text.empty()) text += ' ';
    text += halvorine::FormatBounded(16, "(%04X,%04X)", element->group, element->element);
  }
  return text;
}

std::uint32_t GroupLengthOf(const DicomData& data, std::size_t index) {
  return dynamic_cast<const UnsignedIntegerVR&>(*data.Elements()[index]).values.at(0);
}

const std::string kReinsertXY =
    "Attempt to reinsert an existing VR. \r\nVR= (0010, 0010) VR=LO Length=2<=>0x2 Value=[XY]";

TEST(VRContainerTest, FindAndAppendFollowTheDuplicateRule) {
  DicomData data(false);
  EXPECT_EQ(data.Find(0x0010, 0x0010), nullptr);
  data.Append(Text(0x0010, 0x0010), true);
  data.Append(Text(0x0010, 0x0010, ""), true);
  data.Append(Text(0x0010, 0x0010), false);
  data.Append(nullptr, true);
  EXPECT_EQ(TagsOf(data), "(0010,0010) (0010,0010) (0010,0010)");
  EXPECT_EQ(data.Find(0x0010, 0x0010), data.Elements()[0].get());
  std::unique_ptr<VR> duplicate = Text(0x0010, 0x0010, "XY");
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { data.Append(std::move(duplicate), true); }),
               kReinsertXY, "VRContainer");
  EXPECT_NE(duplicate, nullptr) << "a refused element stays with the caller";
  EXPECT_EQ(data.Elements().size(), 3u);
  // The message is cut at 256 bytes.
  const std::string start =
      "Attempt to reinsert an existing VR. \r\nVR= (0010, 0010) VR=LO Length=400<=>0x190 Value=[";
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] {
                 data.Append(Text(0x0010, 0x0010, std::string(400, 'x')), true);
               }),
               start + std::string(255 - start.size(), 'x'), "VRContainer");
}

// A group ending in F goes to the end and is passed over by later walks; an equal tag inside the
// list is passed over, not refused, but one at the end is.
TEST(VRContainerTest, InsertKeepsTagOrderAndMakesGroupLengths) {
  const struct {
    bool addGroupLengths;
    std::vector<std::uint32_t> inserts;  // group << 16 | element
    const char* tags;
  } cases[] = {
      {true, {0x00020010, 0x00020002}, "(0002,0000) (0002,0002) (0002,0010)"},
      {true, {0x00041130, 0x00020010}, "(0002,0000) (0002,0010) (0004,0000) (0004,1130)"},
      {true,
       {0x80000001, 0x00088001, 0x00080001},
       "(0008,0000) (0008,0001) (0008,8001) (8000,0000) (8000,0001)"},
      {true,
       {0x00080010, 0x001F0001, 0x00100010, 0x00080020},
       "(0008,0000) (0008,0010) (001F,0001) (0008,0020) (0010,0000) (0010,0010)"},
      {true,
       {0x00080010, 0x00100010, 0x00080010},
       "(0008,0000) (0008,0010) (0008,0010) (0010,0000) (0010,0010)"},
      {false, {0x00041130, 0x00020010}, "(0002,0010) (0004,1130)"},
  };
  for (const auto& test : cases) {
    DicomData data(test.addGroupLengths);
    for (const std::uint32_t tag : test.inserts) data.Insert(Text(tag >> 16, tag & 0xFFFF));
    data.Insert(nullptr);
    EXPECT_EQ(TagsOf(data), test.tags);
  }
  DicomData data(true);
  data.Insert(Text(0x0010, 0x0010));
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { data.Insert(Text(0x0010, 0x0010, "XY")); }),
               kReinsertXY, "VRContainer");
  data.Insert(Text(0x0010, 0x0010, ""));
  EXPECT_EQ(TagsOf(data), "(0010,0000) (0010,0010) (0010,0010)");
}

TEST(VRContainerTest, WriteElementsPatchesGroupLengthsAndNotesOffsets) {
  DicomData data(true);
  data.Insert(Text(0x0002, 0x0010, "1.2.840.10008.1.2.1"));
  data.Insert(Text(0x0004, 0x1130));
  data.Insert(Text(0x0005, 0x0010));
  data.Append(Text(0x0006, 0x0010), true);
  data.Insert(Text(0x001F, 0x0010));
  BufferWriter writer("1.2.840.10008.1.2.1");
  writer.WriteUnsignedLong(0);
  OffsetMap offsets = {{0x00100002, 999}};
  data.WriteElements(writer, &offsets);
  EXPECT_EQ(HexOf(writer.GetBuffer() + 4, 12), "02 00 00 00 55 4C 04 00 1C 00 00 00");
  // Group 0002: 28 bytes. Group 0004: 12. Group 0005 counts the groups behind it, which have no
  // group length element of their own: 12 + 12 + 12.
  EXPECT_EQ(GroupLengthOf(data, 0), 28u);
  EXPECT_EQ(GroupLengthOf(data, 2), 12u);
  EXPECT_EQ(GroupLengthOf(data, 4), 36u);
  const OffsetMap expected = {{0x0002, 4},  {0x00100002, 16}, {0x0004, 44},     {0x11300004, 56},
                              {0x0005, 68}, {0x00100005, 80}, {0x00100006, 92}, {0x0010001F, 104}};
  EXPECT_EQ(offsets, expected);
}

// Without group lengths, element 0 is an element like any other.
TEST(VRContainerTest, WithoutGroupLengthsElementZeroIsWrittenAsItStands) {
  DicomData data(false);
  data.Append(std::make_unique<UnsignedIntegerVR>("UL", 0x0008, 0x0000, 4, 99u), true);
  BufferWriter writer("1.2.840.10008.1.2.1");
  data.WriteElements(writer, nullptr);
  EXPECT_EQ(StreamOf(writer), "08 00 00 00 55 4C 04 00 63 00 00 00");
}

}  // namespace
}  // namespace DicomEngine
