#include "engine/parsing/PlainItem.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "engine/EngineTestSupport.h"
#include "engine/elements/DicomData.h"
#include "engine/encoding/ElementBytes.h"
#include "engine/parsing/Parser.h"

namespace DicomEngine {
namespace {

using halvorine::ElementHeader;
using halvorine::LittleEndian;
using Kind = PlainElement::Kind;

std::string Element(std::uint16_t group, std::uint16_t element, const std::string& code,
                    const std::string& value) {
  return ElementHeader(group, element, code, static_cast<std::uint32_t>(value.size())) + value;
}

bool Read(PlainItem& item, const std::string& bytes) {
  return item.Read({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

// What the parser's element holds as a plain element does: its class's kind and value.
PlainElement AsPlain(const VR& element) {
  if (const auto* text = dynamic_cast<const VRString*>(&element)) {
    return {element.group, element.element, Kind::kText, text->GetValue()};
  }
  if (const auto* longs = dynamic_cast<const UnsignedIntegerVR*>(&element)) {
    return {element.group, element.element, Kind::kUnsignedLong,
            {reinterpret_cast<const char*>(longs->values.data()), longs->values.size() * 4}};
  }
  if (const auto* shorts = dynamic_cast<const UnsignedShortVR*>(&element)) {
    return {element.group, element.element, Kind::kUnsignedShort,
            {reinterpret_cast<const char*>(shorts->values.data()), shorts->values.size() * 2}};
  }
  return {element.group, element.element, Kind::kOther, {}};
}

// Texts with padding and with a NUL inside, UI, UT's long length, empty values and lists of
// numbers: the same tags, kinds and values as the parser's objects of the same bytes.
TEST(PlainItemTest, HoldsWhatTheParserMakes) {
  const std::string bytes =
      Element(0x0004, 0x1400, "UL", LittleEndian(0x01020304, 4) + LittleEndian(7, 4)) +
      Element(0x0004, 0x1410, "US", LittleEndian(0xFFFF, 2)) + Element(0x0004, 0x1420, "UL", "") +
      Element(0x0004, 0x1430, "CS", "IMAGE ") + Element(0x0004, 0x1500, "CS", "A\\B\0C ") +
      Element(0x0004, 0x1510, "UI", std::string("1.2\0", 4)) + Element(0x0008, 0x0005, "UT", "") +
      Element(0x0008, 0x0006, "UT", std::string(70000, 'u')) + Element(0x0010, 0x0010, "PN", "") +
      Element(0x0020, 0x0013, "IS", "7 ");
  PlainItem item;
  ASSERT_TRUE(Read(item, bytes));
  DicomData parsed(false);
  Parser(std::make_unique<BufferReader>(Chunked(bytes, {})), kExplicitLittleEndian).Parse(parsed);
  ASSERT_EQ(item.Elements().size(), parsed.Elements().size());
  for (std::size_t index = 0; index < parsed.Elements().size(); ++index) {
    const PlainElement expected = AsPlain(*parsed.Elements()[index]);
    const PlainElement& read = item.Elements()[index];
    EXPECT_EQ(read.group, expected.group) << index;
    EXPECT_EQ(read.element, expected.element) << index;
    EXPECT_EQ(read.kind, expected.kind) << index;
    EXPECT_EQ(read.value, expected.value) << index;
  }
  EXPECT_EQ(item.Elements()[4].value, "A\\B");
  EXPECT_TRUE(Read(item, ""));
  EXPECT_TRUE(item.Elements().empty());
}

// Each of these behind a plain element: what the parser would read otherwise, fail on, or make
// another class of.
TEST(PlainItemTest, AnythingElseIsLeftToTheParser) {
  const std::string first = Element(0x0008, 0x0010, "CS", "AB");
  const std::string cases[] = {
      Element(0x0002, 0x0010, "UI", "1.2"),
      ElementHeader(0xFFFE, 0xE00D, "", 0),
      Element(0x0008, 0x0010, "CS", "CD"),
      Element(0x0008, 0x000F, "CS", "CD"),
      Element(0x0008, 0x0020, "SQ", ""),
      Element(0x0008, 0x0020, "OB", "ab"),
      Element(0x0008, 0x0020, "SS", "ab"),
      Element(0x0008, 0x0020, "ZZ", "ab"),
      Element(0x0008, 0x0020, std::string(2, '\0'), "ab"),
      Element(0x0008, 0x0020, "UL", "123456"),
      Element(0x0008, 0x0020, "US", "123"),
      Element(0x0008, 0x0020, "CS", "ab").substr(0, 9),
      ElementHeader(0x0008, 0x0020, "LO", 4) + "ab",
      ElementHeader(0x0008, 0x0020, "UT", 2).substr(0, 10),
      std::string(7, 'x'),
  };
  PlainItem item;
  ASSERT_TRUE(Read(item, first));
  for (const std::string& bytes : cases) EXPECT_FALSE(Read(item, first + bytes)) << bytes.size();

  std::string most;
  for (std::uint16_t element = 1; element <= PlainItem::kMaxElements; ++element) {
    most += Element(0x0008, element, "CS", "");
  }
  EXPECT_TRUE(Read(item, most));
  EXPECT_FALSE(Read(item, most + Element(0x0009, 0x0000, "CS", "")));
}

}  // namespace
}  // namespace DicomEngine
