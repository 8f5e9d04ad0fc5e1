#include "engine/elements/VRSequenceItem.h"

#include <gtest/gtest.h>

#include <memory>

#include "engine/elements/UnsignedIntegerVR.h"
#include "engine/encoding/HexText.h"

namespace DicomEngine {
namespace {

TEST(VRSequenceItemTest, IsAnElementOfItsOwnLengthAndAContainerOfItsElements) {
  VRSequenceItem item("", kItemGroup, kItem, 100);
  item.Append(std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, 0u), true);
  EXPECT_EQ(static_cast<const VR&>(item).GetLength(), 100u);
  EXPECT_EQ(static_cast<const VRContainer&>(item).GetLength(), 4u);
  EXPECT_EQ(
      item.ToString(),
      "(FFFE, E000) VR= Length=100<=>0x64\r\n(0004, 1400) VR=UL Length=4<=>0x4 Value=[0<=>0x0]");
  BufferWriter content("1.2.840.10008.1.2.1");
  static_cast<VRContainer&>(item).Write(content);
  EXPECT_EQ(StreamOf(content), "04 00 00 14 55 4C 04 00 00 00 00 00");
}

}  // namespace
}  // namespace DicomEngine
