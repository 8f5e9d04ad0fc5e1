#include "engine/elements/VR.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/EngineTestSupport.h"
#include "engine/elements/DoubleVR.h"
#include "engine/elements/IntegerVR.h"
#include "engine/elements/SignedShortVR.h"
#include "engine/elements/UnsignedIntegerVR.h"
#include "engine/elements/UnsignedShortVR.h"
#include "engine/elements/VRAttributeTag.h"
#include "engine/encoding/HexText.h"

namespace DicomEngine {
namespace {

using Factory = std::function<std::unique_ptr<VR>()>;

template <typename Element, typename... Arguments>
Factory Make(Arguments... arguments) {
  return [=] { return std::make_unique<Element>(arguments...); };
}

// (0002,0001) with the bytes.
Factory BinaryOf(VRCode code, Bytes bytes) {
  return [=] { return Binary(code, 0x0002, 0x0001, bytes); };
}

using Numbers = std::vector<double>;
using Tags = std::vector<AttributeTag>;
const std::string kUid = "1.2.840.10008.1.2.1";

struct Encoding {
  const char* what;
  Factory make;
  std::string bytes;  // explicit VR little endian
  std::uint32_t length;
};

const Encoding kEncodings[] = {
    {"UL", Make<UnsignedIntegerVR>("UL", 0x0004, 0x1200, 4, 0u),
     "04 00 00 12 55 4C 04 00 00 00 00 00", 4},
    {"US", Make<UnsignedShortVR>("US", 0x0004, 0x1212, 2, 0), "04 00 12 12 55 53 02 00 00 00", 2},
    {"CS", Make<VRString>("CS", 0x0004, 0x1430, 7, "PATIENT"),
     "04 00 30 14 43 53 08 00 50 41 54 49 45 4E 54 20", 8},
    {"UI", Make<VRUniqueIdentifier>("UI", 0x0002, 0x0010, 19, kUid),
     "02 00 10 00 55 49 14 00 " + HexOf(kUid) + " 00", 20},
    {"OB", BinaryOf("OB", {0x02, 0x00}), "02 00 01 00 4F 42 00 00 02 00 00 00 02 00", 2},
    {"SQ", Make<VRSequence>("SQ", 0x0004, 0x1220, 0), "04 00 20 12 53 51 00 00 00 00 00 00", 0},
    {"item",
     [] { return ItemOf(0, std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, 0u)); },
     "FE FF 00 E0 0C 00 00 00 04 00 00 14 55 4C 04 00 00 00 00 00", 12},
    {"undefined length stays",
     [] {
       return SequenceOf("SQ", 0x0004, 0x1220, kUndefinedLength, Delimiter(kSequenceDelimiter));
     },
     "04 00 20 12 53 51 00 00 FF FF FF FF FE FF DD E0 00 00 00 00", kUndefinedLength},
    {"declared 100, 6 bytes",
     Make<UnsignedShortVR>("US", 0x0028, 0x0010, 100, std::vector<std::uint16_t>{1, 2, 3}),
     "28 00 10 00 55 53 06 00 01 00 02 00 03 00", 6},
    {"SL", Make<IntegerVR>("SL", 0x0018, 0x6020, 8, std::vector<std::int32_t>{-1, 2}),
     "18 00 20 60 53 4C 08 00 FF FF FF FF 02 00 00 00", 8},
    {"SS", Make<SignedShortVR>("SS", 0x0018, 0x9219, 2, std::vector<std::int16_t>{-5}),
     "18 00 19 92 53 53 02 00 FB FF", 2},
    {"FL narrowed", Make<DoubleVR>("FL", 0x0018, 0x2043, 8, Numbers{1.5, -2}),
     "18 00 43 20 46 4C 08 00 00 00 C0 3F 00 00 00 C0", 8},
    {"FD", Make<DoubleVR>("FD", 0x0018, 0x2043, 8, Numbers{1.5, -2}),
     "18 00 43 20 46 44 10 00 00 00 00 00 00 00 F8 3F 00 00 00 00 00 00 00 C0", 16},
    {"empty list", Make<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, std::vector<std::uint32_t>{}),
     "04 00 00 14 55 4C 00 00", 0},
    {"SL under UL", Make<IntegerVR>("UL", 0x0018, 0x6020, 4, std::vector<std::int32_t>{7}),
     "18 00 20 60 55 4C 00 00", 0},
    {"UL under SL", Make<UnsignedIntegerVR>("SL", 0x0004, 0x1400, 4, 7u), "04 00 00 14 53 4C 00 00",
     0},
    {"SS under US", Make<SignedShortVR>("US", 0x0018, 0x9219, 2, std::vector<std::int16_t>{7}),
     "18 00 19 92 55 53 00 00", 0},
    {"US under SS", Make<UnsignedShortVR>("SS", 0x0028, 0x0010, 2, 7), "28 00 10 00 53 53 00 00",
     0},
    {"double under DS", Make<DoubleVR>("DS", 0x0018, 0x2043, 8, Numbers{1}),
     "18 00 43 20 44 53 00 00", 0},
    {"empty text", Make<VRString>("PN", 0x0010, 0x0010, 0, ""), "10 00 10 00 50 4E 00 00", 0},
    {"minimum width", Make<VRString>("PN", 0x0010, 0x0010, 7, "ABC"),
     "10 00 10 00 50 4E 08 00 41 42 43 20 20 20 20 20", 8},
    {"longer text", Make<VRString>("PN", 0x0010, 0x0010, 2, "ABCDE"),
     "10 00 10 00 50 4E 05 00 41 42 43 44 45", 5},
    {"UID padded", Make<VRUniqueIdentifier>("UI", 0x0008, 0x0016, 3, "ABC"),
     "08 00 16 00 55 49 04 00 41 42 43 00", 4},
    {"AT", Make<VRAttributeTag>("AT", 0x0028, 0x0009, 0, Tags{{0x0018, 0x1063}, {0x7FE0, 0x0010}}),
     "28 00 09 00 41 54 08 00 18 00 63 10 E0 7F 10 00", 8},
    {"odd OB", BinaryOf("OB", {1, 2, 3}), "02 00 01 00 4F 42 00 00 03 00 00 00 01 02 03", 3},
    {"OT", BinaryOf("OT", {1, 2}), "02 00 01 00 4F 54 02 00 01 02", 2},
};

TEST(VRTest, WritesWholeElementsToTheByte) {
  for (const Encoding& test : kEncodings) {
    BufferWriter writer("1.2.840.10008.1.2.1");
    const std::unique_ptr<VR> element = test.make();
    element->Write(writer);
    EXPECT_EQ(StreamOf(writer), test.bytes) << test.what;
    EXPECT_EQ(element->length, test.length) << test.what;
  }
}

TEST(VRTest, SetValueTakesTheTextsSizeMadeEven) {
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

TEST(VRTest, AShortLengthFieldKeepsTheLow16BitsOfALongText) {
  BufferWriter writer("1.2.840.10008.1.2.1");
  VRString element("LT", 0x0020, 0x4000, 70'000, std::string(70'000, 'x'));
  element.Write(writer);
  EXPECT_EQ(HexOf(writer.GetBuffer(), 8), "20 00 00 40 4C 54 70 11");
  EXPECT_EQ(writer.GetCursor(), 8u + 70'000u);
  EXPECT_EQ(element.length, 70'000u);
}

TEST(VRTest, ToStringHasTheFormOfEachClass) {
  const struct {
    Factory make;
    const char* text;
  } cases[] = {
      {Make<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, 0x80000000u),
       "(0004, 1400) VR=UL Length=4<=>0x4 Value=[-2147483648<=>0x80000000]"},
      {Make<IntegerVR>("SL", 0x0018, 0x6020, 8, std::vector<std::int32_t>{-1, 2}),
       "(0018, 6020) VR=SL Length=8<=>0x8 Value=[-1<=>0xFFFFFFFF]; Value=[2<=>0x2];"},
      {Make<SignedShortVR>("SS", 0x0018, 0x9219, 2, std::vector<std::int16_t>{-5}),
       "(0018, 9219) VR=SS Length=2<=>0x2 Value=[-5<=>0xFFFFFFFB]"},
      {Make<UnsignedShortVR>("US", 0x0028, 0x0010, 2, 65535),
       "(0028, 0010) VR=US Length=2<=>0x2 Value=[65535<=>0xFFFF]"},
      {Make<DoubleVR>("FD", 0x0018, 0x9087, 16, Numbers{1.5, -2}),
       "(0018, 9087) VR=FD Length=16<=>0x10 Value=[1.500000<=>0x1.500000]; "
       "Value=[-2.000000<=>0x-2.000000];"},
      {Make<DoubleVR>("FD", 0x0018, 0x9087, 8, Numbers{1e300}),
       "(0018, 9087) VR=FD Length=8<=>0x8 "
       "Value=[1000000000000000052504760255204420248704468581108159154"},
      {Make<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, std::vector<std::uint32_t>{}),
       "(0004, 1400) VR=UL Length=4<=>0x4"},
      {Make<VRString>("PN", 0x0010, 0x0010, 10, "Doe^John "),
       "(0010, 0010) VR=PN Length=10<=>0xA Value=[Doe^John ]"},
      {Make<VRUniqueIdentifier>("UI", 0x0002, 0x0010, 20, kUid),
       "(0002, 0010) VR=UI Length=20<=>0x14 Value=[1.2.840.10008.1.2.1]"},
      {Make<VRAttributeTag>("AT", 0x0028, 0x0009, 8, Tags{{0x0018, 0x1063}, {0x7FE0, 0x0010}}),
       "(0028, 0009) VR=AT Length=8<=>0x8Value=[(18, 1063)]\r\nValue=[(7fe0, 10)]\r\n"},
      {BinaryOf("OW", {1, 2, 3}),
       "(0002, 0001) VR=OW Length=3<=>0x3 Value=BINARY Length=[3<=>0x3]"},
      {Make<VRBinarySequenceItem>(0xFFFE, 0xE000, 26, nullptr),
       "(FFFE, E000) VR= Length=26<=>0x1A Value=BINARY Length=[26<=>0x1a]"},
      {Make<VRSequenceItem>("", 0xFFFE, 0xE0DD, kUndefinedLength),
       "(FFFE, E0DD) VR= Length=4294967295<=>0xFFFFFFFF"},
  };
  for (const auto& test : cases) EXPECT_EQ(test.make()->ToString(), test.text);
}

}  // namespace
}  // namespace DicomEngine
