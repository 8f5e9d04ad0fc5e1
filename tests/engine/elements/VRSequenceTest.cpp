#include "engine/elements/VRSequence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "RaisedMessage.h"
#include "engine/EngineTestSupport.h"
#include "engine/elements/UnsignedShortVR.h"
#include "engine/encoding/HexText.h"

namespace DicomEngine {
namespace {

// Fragments of 10, 20 and 30 bytes counting up from 0, 10 and 30, and the delimiter, behind
// another item of 4 bytes when one is given.
template <typename... Items>
std::unique_ptr<VR> Pixels(std::uint32_t length, Items... before) {
  Bytes bytes(60);
  for (std::uint8_t i = 0; i < 60; ++i) bytes[i] = i;
  return SequenceOf("OB", 0x7FE0, 0x0010, length, std::move(before)...,
                    Fragment(Bytes(&bytes[0], &bytes[10])), Fragment(Bytes(&bytes[10], &bytes[30])),
                    Fragment(Bytes(&bytes[30], &bytes[60])), Delimiter(kSequenceDelimiter));
}

std::unique_ptr<VR> Us(std::uint16_t element, std::uint16_t value) {
  return std::make_unique<UnsignedShortVR>("US", 0x0028, element, 2, value);
}

// A sequence sums its items' own lengths in both views; an item is, as a VR, of its own length
// and, as a container, of its elements' lengths.
TEST(VRSequenceTest, GetLengthSumsTheItemsOwnLengths) {
  const std::unique_ptr<VR> pixels = Pixels(kUndefinedLength);
  EXPECT_EQ(pixels->GetLength(), 60u);
  EXPECT_EQ(dynamic_cast<const VRContainer&>(*pixels).GetLength(), 60u);
  std::unique_ptr<VR> item = ItemOf(6, Text("CS", 0x0004, 0x1430, "PATIENT "));
  EXPECT_EQ(item->GetLength(), 6u);
  EXPECT_EQ(dynamic_cast<const VRContainer&>(*item).GetLength(), 8u);
  EXPECT_EQ(SequenceOf("SQ", 0x0004, 0x1220, 0, std::move(item))->GetLength(), 6u);
}

TEST(VRSequenceTest, ToStringShowsTheItemsBelowTheHeader) {
  EXPECT_EQ(SequenceOf("SQ", 0x0004, 0x1220, 0)->ToString(), "(0004, 1220) VR=SQ Length=0<=>0x0");
  EXPECT_EQ(SequenceOf("SQ", 0x0004, 0x1220, 0, ItemOf(0, Us(0x0010, 1)), ItemOf(0))->ToString(),
            "(0004, 1220) VR=SQ Length=0<=>0x0\r\n(FFFE, E000) VR= Length=0<=>0x0\r\n"
            "(0028, 0010) VR=US Length=2<=>0x2 Value=[1<=>0x1]\r\n(FFFE, E000) VR= Length=0<=>0x0");
}

TEST(VRSequenceTest, NestedLengthsArePatchedLevelByLevel) {
  const std::unique_ptr<VR> outer =
      SequenceOf("SQ", 0x0004, 0x1220, 0,
                 ItemOf(0, Text("CS", 0x0004, 0x1430, "IMAGE"),
                        SequenceOf("SQ", 0x0088, 0x0200, 0, ItemOf(0, Us(0x0010, 64)))));
  BufferWriter writer("1.2.840.10008.1.2.1");
  outer->Write(writer);
  EXPECT_EQ(StreamOf(writer),
            "04 00 20 12 53 51 00 00 34 00 00 00 FE FF 00 E0 2C 00 00 00 "
            "04 00 30 14 43 53 06 00 49 4D 41 47 45 20 88 00 00 02 53 51 00 00 12 00 00 00 "
            "FE FF 00 E0 0A 00 00 00 28 00 10 00 55 53 02 00 40 00");
}

// A fragment sequence joins its fragments and passes over other items; a binary element gives a
// copy of its block. Nothing gives null, and a null pointer fails under the class's own unit.
TEST(VRSequenceTest, GetPixelDataJoinsTheFragmentsOrCopiesTheBlock) {
  const auto fragments = Pixels(kUndefinedLength, ItemOf(4));
  const auto binary = Binary("OB", 0x7FE0, 0x0010, {0, 1, 2});
  const VRSequence nothing("OB", 0x7FE0, 0x0010, 0);
  const VRBinary noBlock("OB", 0x7FE0, 0x0010, 0, nullptr);
  const struct {
    const PixelDataContainer* element;
    std::uint32_t count;
    const char* unit;
  } cases[] = {{dynamic_cast<const VRSequence*>(fragments.get()), 64, "VRSequence"},
               {dynamic_cast<const VRBinary*>(binary.get()), 3, "VRBinary"},
               {&nothing, 0, "VRSequence"},
               {&noBlock, 0, "VRBinary"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.unit);
    auto data = std::make_unique<std::uint8_t[]>(1);
    std::uint32_t count = 7;
    c.element->GetPixelData(&data, &count);
    ASSERT_EQ(count, c.count);
    EXPECT_EQ(data == nullptr, c.count == 0);
    for (std::uint8_t i = 0; i < std::min(count, 60u); ++i) ASSERT_EQ(data[i], i);
    if (c.count == 3) {
      EXPECT_NE(data.get(), dynamic_cast<const VRBinary&>(*binary).GetData());
    }
    for (auto get : {std::function<void()>([&] { c.element->GetPixelData(nullptr, &count); }),
                     std::function<void()>([&] { c.element->GetPixelData(&data, nullptr); })}) {
      EXPECT_PRED3(halvorine::IsPlaced, halvorine::RaisedMessage(get),
                   "The Pixel data buffer pointer is NULL.", c.unit);
    }
  }
}

}  // namespace
}  // namespace DicomEngine
