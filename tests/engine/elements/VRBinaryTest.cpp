#include "engine/elements/VRBinary.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "RaisedMessage.h"
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

TEST(VRBinaryTest, GetPixelDataRefusesNullPointers) {
  const VRBinary element("OB", 0x7FE0, 0x0010, 0, nullptr);
  std::unique_ptr<std::uint8_t[]> data;
  std::uint32_t count = 0;
  for (auto action : {std::function<void()>([&] { element.GetPixelData(nullptr, &count); }),
                      std::function<void()>([&] { element.GetPixelData(&data, nullptr); })}) {
    EXPECT_PRED3(halvorine::IsPlaced, halvorine::RaisedMessage(action),
                 "The Pixel data buffer pointer is NULL.", "VRBinary");
  }
}

}  // namespace
}  // namespace DicomEngine
