#include "engine/elements/VRSequence.h"

#include <gtest/gtest.h>

#include <memory>

#include "engine/elements/UnsignedShortVR.h"
#include "engine/elements/VRBinarySequenceItem.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/encoding/HexText.h"

namespace DicomEngine {
namespace {

std::unique_ptr<VR> Fragment(std::uint32_t length, std::uint8_t first) {
  auto block = std::make_unique<std::uint8_t[]>(length);
  for (std::uint32_t i = 0; i < length; ++i) block[i] = static_cast<std::uint8_t>(first + i);
  return std::make_unique<VRBinarySequenceItem>(kItemGroup, kItem, length, std::move(block));
}

std::unique_ptr<VRSequenceItem> Item(std::uint32_t length) {
  return std::make_unique<VRSequenceItem>("", kItemGroup, kItem, length);
}

// Three fragments of 10, 20 and 30 bytes counting up from 0, 10 and 30, and the delimiter.
void AddFragments(VRSequence& pixels) {
  pixels.Append(Fragment(10, 0), false);
  pixels.Append(Fragment(20, 10), false);
  pixels.Append(Fragment(30, 30), false);
  pixels.Append(std::make_unique<VRSequenceItem>("", kItemGroup, kSequenceDelimiter, 0), false);
}

// A sequence sums its items' own lengths in both views; an item is, as a VR, of its own length
// and, as a container, of its elements' lengths.
TEST(VRSequenceTest, GetLengthSumsTheItemsOwnLengths) {
  VRSequence pixels("OB", 0x7FE0, 0x0010, kUndefinedLength);
  AddFragments(pixels);
  EXPECT_EQ(static_cast<const VR&>(pixels).GetLength(), 60u);
  EXPECT_EQ(static_cast<const VRContainer&>(pixels).GetLength(), 60u);
  VRSequence records("SQ", 0x0004, 0x1220, 0);
  auto item = Item(6);
  item->Append(std::make_unique<VRString>("CS", 0x0004, 0x1430, 8, "PATIENT "), true);
  EXPECT_EQ(static_cast<const VR&>(*item).GetLength(), 6u);
  EXPECT_EQ(static_cast<const VRContainer&>(*item).GetLength(), 8u);
  records.Append(std::move(item), false);
  EXPECT_EQ(records.GetLength(), 6u);
}

TEST(VRSequenceTest, ToStringShowsTheItemsBelowTheHeader) {
  VRSequence sequence("SQ", 0x0004, 0x1220, 0);
  EXPECT_EQ(sequence.ToString(), "(0004, 1220) VR=SQ Length=0<=>0x0");
  auto item = Item(0);
  item->Append(std::make_unique<UnsignedShortVR>("US", 0x0004, 0x1410, 2, 1), true);
  sequence.Append(std::move(item), false);
  sequence.Append(Item(0), false);
  EXPECT_EQ(sequence.ToString(),
            "(0004, 1220) VR=SQ Length=0<=>0x0\r\n(FFFE, E000) VR= Length=0<=>0x0\r\n"
            "(0004, 1410) VR=US Length=2<=>0x2 Value=[1<=>0x1]\r\n(FFFE, E000) VR= Length=0<=>0x0");
}

TEST(VRSequenceTest, NestedLengthsArePatchedLevelByLevel) {
  VRSequence outer("SQ", 0x0004, 0x1220, 0);
  auto record = Item(0);
  record->Append(std::make_unique<VRString>("CS", 0x0004, 0x1430, 5, "IMAGE"), true);
  auto inner = std::make_unique<VRSequence>("SQ", 0x0088, 0x0200, 0);
  auto icon = Item(0);
  icon->Append(std::make_unique<UnsignedShortVR>("US", 0x0028, 0x0010, 2, 64), true);
  inner->Append(std::move(icon), false);
  record->Append(std::move(inner), true);
  outer.Append(std::move(record), false);
  BufferWriter writer("1.2.840.10008.1.2.1");
  outer.Write(writer);
  EXPECT_EQ(StreamOf(writer),
            "04 00 20 12 53 51 00 00 34 00 00 00 FE FF 00 E0 2C 00 00 00 "
            "04 00 30 14 43 53 06 00 49 4D 41 47 45 20 88 00 00 02 53 51 00 00 12 00 00 00 "
            "FE FF 00 E0 0A 00 00 00 28 00 10 00 55 53 02 00 40 00");
}

TEST(VRSequenceTest, GetPixelDataJoinsTheFragmentsAndPassesOverOtherItems) {
  VRSequence pixels("OB", 0x7FE0, 0x0010, kUndefinedLength);
  pixels.Append(Item(4), false);
  AddFragments(pixels);
  std::unique_ptr<std::uint8_t[]> data;
  std::uint32_t count = 0;
  pixels.GetPixelData(&data, &count);
  ASSERT_EQ(count, 64u);
  for (std::uint8_t i = 0; i < 60; ++i) ASSERT_EQ(data[i], i);
}

TEST(VRSequenceTest, GetPixelDataOfNothingIsNull) {
  const VRSequence pixels("OB", 0x7FE0, 0x0010, 0);
  auto data = std::make_unique<std::uint8_t[]>(1);
  std::uint32_t count = 7;
  pixels.GetPixelData(&data, &count);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(data, nullptr);
}

}  // namespace
}  // namespace DicomEngine
