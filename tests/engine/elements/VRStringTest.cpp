#include "engine/elements/VRString.h"

#include <gtest/gtest.h>

#include "engine/elements/VRUniqueIdentifier.h"

namespace DicomEngine {
namespace {

TEST(VRStringTest, SetValueTakesTheTextsSizeMadeEven) {
  VRUniqueIdentifier uid("UI", 0x0002, 0x0010, 18, "1.2.840.10008.1.2");
  VRString text("LO", 0x0010, 0x0020, 0, "");
  for (VRString* element : {static_cast<VRString*>(&uid), &text}) {
    element->SetValue("ABC");
    EXPECT_EQ(element->GetValue(), "ABC");
    EXPECT_EQ(element->length, 4u);
    element->SetValue("");
    EXPECT_EQ(element->length, 0u);
  }
}

}  // namespace
}  // namespace DicomEngine
