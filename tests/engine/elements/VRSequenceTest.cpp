#include "engine/elements/VRSequence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "RaisedMessage.h"
#include "engine/EngineTestSupport.h"

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

// A fragment sequence joins its fragments and passes over other items, whose own length, not
// their elements', still counts; a binary element gives a copy of its block. Nothing gives null,
// and a null pointer fails under the class's own unit.
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
