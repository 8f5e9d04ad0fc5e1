#include "engine/elements/VR.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/EngineTestSupport.h"
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

// Codes, paddings and values that FileWriterDcmtkTest reads back are left to it.
struct Encoding {
  const char* what;
  Factory make;
  std::string bytes;  // explicit VR little endian
  std::uint32_t length;
};

const Encoding kEncodings[] = {
    {"SQ", Make<VRSequence>("SQ", 0x0004, 0x1220, 0), "04 00 20 12 53 51 00 00 00 00 00 00", 0},
    {"declared 100, 6 bytes",
     Make<UnsignedShortVR>("US", 0x0028, 0x0010, 100, std::vector<std::uint16_t>{1, 2, 3}),
     "28 00 10 00 55 53 06 00 01 00 02 00 03 00", 6},
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
    {"minimum width", Make<VRString>("PN", 0x0010, 0x0010, 7, "ABC"),
     "10 00 10 00 50 4E 08 00 41 42 43 20 20 20 20 20", 8},
    {"longer text", Make<VRString>("PN", 0x0010, 0x0010, 2, "ABCDE"),
     "10 00 10 00 50 4E 05 00 41 42 43 44 45", 5},
    {"UID padded", Make<VRUniqueIdentifier>("UI", 0x0008, 0x0016, 3, "ABC"),
     "08 00 16 00 55 49 04 00 41 42 43 00", 4},
    {"odd OB", BinaryOf("OB", {1, 2, 3}), "02 00 01 00 4F 42 00 00 03 00 00 00 01 02 03", 3},
    {"OT", BinaryOf("OT", {1, 2}), "02 00 01 00 4F 54 02 00 01 02", 2},
};

// A text's length becomes its size made even, when it is written or set.
TEST(VRTest, WritesWholeElementsToTheByte) {
  for (const Encoding& test : kEncodings) {
    BufferWriter writer("1.2.840.10008.1.2.1");
    const std::unique_ptr<VR> element = test.make();
    element->Write(writer);
    EXPECT_EQ(StreamOf(writer), test.bytes) << test.what;
    EXPECT_EQ(element->length, test.length) << test.what;
  }
  VRUniqueIdentifier uid("UI", 0x0002, 0x0010, 18, "1.2.840.10008.1.2");
  uid.SetValue("ABC");
  EXPECT_EQ(uid.length, 4u);
  uid.SetValue("");
  EXPECT_EQ(uid.length, 0u);
  // A short length field keeps the low 16 bits of a long text's length.
  BufferWriter writer("1.2.840.10008.1.2.1");
  VRString text("LT", 0x0020, 0x4000, 70'000, std::string(70'000, 'x'));
  text.Write(writer);
  EXPECT_EQ(HexOf(writer.GetBuffer(), 8), "20 00 00 40 4C 54 70 11");
  EXPECT_EQ(writer.GetCursor(), 8u + 70'000u);
  EXPECT_EQ(text.length, 70'000u);
}

// Texts, binaries and sequences show in ParserTest's texts.
TEST(VRTest, ToStringHasTheFormOfEachClass) {
  const struct {
    Factory make;
    const char* text;
  } cases[] = {
      {Make<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, 0x80000000u),
       "(0004, 1400) VR=UL Length=4<=>0x4 Value=[-2147483648<=>0x80000000]"},
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
      {Make<VRAttributeTag>("AT", 0x0028, 0x0009, 8, Tags{{0x0018, 0x1063}, {0x7FE0, 0x0010}}),
       "(0028, 0009) VR=AT Length=8<=>0x8Value=[(18, 1063)]\r\nValue=[(7fe0, 10)]\r\n"},
      {Make<VRBinarySequenceItem>(0xFFFE, 0xE000, 26, nullptr),
       "(FFFE, E000) VR= Length=26<=>0x1A Value=BINARY Length=[26<=>0x1a]"},
  };
  for (const auto& test : cases) EXPECT_EQ(test.make()->ToString(), test.text);
}

}  // namespace
}  // namespace DicomEngine
