#include "engine/elements/VRBinary.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "RaisedMessage.h"
#include "engine/elements/VRSequence.h"
#include "engine/encoding/HexText.h"

namespace DicomEngine {
namespace {

TEST(VRBinaryTest, GetPixelDataGivesACopyOfTheBlockOrNull) {
  auto block = std::make_unique<std::uint8_t[]>(3);
  block[2] = 9;
  const VRBinary element("OB", 0x7FE0, 0x0010, 3, std::move(block));
  std::unique_ptr<std::uint8_t[]> data;
  std::uint32_t count = 0;
  element.GetPixelData(&data, &count);
  ASSERT_EQ(count, 3u);
  EXPECT_NE(data.get(), element.GetData());
  EXPECT_EQ(HexOf(data.get(), count), "00 00 09");

  VRBinary("OB", 0x7FE0, 0x0010, 0, nullptr).GetPixelData(&data, &count);
  EXPECT_EQ(data, nullptr);
  EXPECT_EQ(count, 0u);
}

// A fragment sequence answers in the same way, under its own unit.
TEST(VRBinaryTest, GetPixelDataRefusesNullPointers) {
  const VRBinary binary("OB", 0x7FE0, 0x0010, 0, nullptr);
  const VRSequence sequence("OB", 0x7FE0, 0x0010, 0);
  const std::pair<const PixelDataContainer*, const char*> cases[] = {{&binary, "VRBinary"},
                                                                     {&sequence, "VRSequence"}};
  std::unique_ptr<std::uint8_t[]> data;
  std::uint32_t count = 0;
  for (const auto& c : cases) {
    EXPECT_PRED3(halvorine::IsPlaced,
                 halvorine::RaisedMessage([&] { c.first->GetPixelData(nullptr, &count); }),
                 "The Pixel data buffer pointer is NULL.", c.second);
    EXPECT_PRED3(halvorine::IsPlaced,
                 halvorine::RaisedMessage([&] { c.first->GetPixelData(&data, nullptr); }),
                 "The Pixel data buffer pointer is NULL.", c.second);
  }
}

}  // namespace
}  // namespace DicomEngine
