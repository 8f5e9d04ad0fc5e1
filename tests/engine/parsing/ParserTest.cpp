#include "engine/parsing/Parser.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/DicomData.h"
#include "engine/encoding/ElementBytes.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"

namespace DicomEngine {
namespace {

using halvorine::ElementHeader;
using halvorine::IsPlaced;
using halvorine::LittleEndian;
using halvorine::RaisedMessage;
using Texts = std::vector<std::string>;

constexpr SyntaxRecord kUnset, ex = kExplicitLittleEndian, im = kImplicitLittleEndian;
const char kTooShort[] = "The buffer is not long enough to perform the requested read operation.";

std::string U16(std::uint16_t value) { return LittleEndian(value, 2); }

// Tag, VR and length in the given syntax's form; an unset syntax has a VR and a 32-bit length.
std::string Header(SyntaxRecord syntax, std::uint16_t group, std::uint16_t element,
                   const std::string& code, std::uint32_t length) {
  if (syntax.vrForm != 0)
    return ElementHeader(group, element, code, length, syntax.vrForm == kImplicitVR);
  return LittleEndian(group, 2) + LittleEndian(element, 2) + code + LittleEndian(length, 4);
}
std::string Element(SyntaxRecord syntax, std::uint16_t group, std::uint16_t element,
                    const std::string& code, const std::string& value) {
  return Header(syntax, group, element, code, static_cast<std::uint32_t>(value.size())) + value;
}
std::string Item(std::uint32_t length) { return ElementHeader(kItemGroup, kItem, "", length); }
const std::string kItemEnd = ElementHeader(kItemGroup, kItemDelimiter, "", 0);
const std::string kSequenceEnd = ElementHeader(kItemGroup, kSequenceDelimiter, "", 0);

const std::string kPatientText = "(0010, 0010) VR=PN Length=8<=>0x8 Value=[Doe^John]";
std::string Patient(SyntaxRecord syntax) {
  return Element(syntax, 0x0010, 0x0010, "PN", "Doe^John");
}

std::unique_ptr<Parser> ParserOver(const std::string& bytes, SyntaxRecord first) {
  return std::make_unique<Parser>(std::make_unique<BufferReader>(Chunked(bytes, {})), first);
}

Texts TextsOf(const VRContainer& container) {
  Texts texts;
  for (const auto& element : container.Elements()) texts.push_back(element->ToString());
  return texts;
}

Texts Parsed(const std::string& bytes, SyntaxRecord first) {
  DicomData data(false);
  ParserOver(bytes, first)->Parse(data);
  return TextsOf(data);
}

class ParserTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
  }
};

// Each case's bytes are followed by the patient's name, which shows where the cursor stood. Codes,
// lengths and texts that the files of FileParserDcmtkTest hold are left to it.
TEST_F(ParserTest, ElementsAreMadeAndConsumedAsTheirCodeSays) {
  const std::string longText(0xFFFF, 'A');
  const std::string sequenceEnd = "\r\n(FFFE, E0DD) VR= Length=0<=>0x0";
  const std::pair<std::string, Texts> cases[] = {
      // OT has the short form and is binary; a VR of NUL bytes is UN, with its long form.
      {Element(ex, 0x0009, 0x1001, "OT", "ab") +
           Element(kUnset, 0x0009, 0x1002, std::string(4, '\0'), "ab"),
       {"(0009, 1001) VR=OT Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]",
        "(0009, 1002) VR=UN Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]"}},
      // US of 3 bytes reads two numbers from 4; AT under 4 bytes reads nothing.
      {Header(ex, 0x0028, 0x0010, "US", 3) + U16(1) + U16(2) + Header(ex, 0x0028, 0x0009, "AT", 2),
       {"(0028, 0010) VR=US Length=3<=>0x3 Value=[1<=>0x1]; Value=[2<=>0x2];",
        "(0028, 0009) VR=AT Length=2<=>0x2"}},
      // An unknown code leaves the cursor on the value.
      {Header(ex, 0x0008, 0x0005, "XX", 4), {}},
      // Texts end at a NUL and keep their blanks.
      {Element(ex, 0x0008, 0x0060, "CS", std::string("A\0B ", 4)) +
           Element(ex, 0x0008, 0x0070, "LO", "  X "),
       {"(0008, 0060) VR=CS Length=4<=>0x4 Value=[A]",
        "(0008, 0070) VR=LO Length=4<=>0x4 Value=[  X ]"}},
      // A short length of 0xFFFF is 65535 bytes.
      {Element(ex, 0x0008, 0x0080, "LO", longText),
       {"(0008, 0080) VR=LO Length=65535<=>0xFFFF Value=[" + longText + "]"}},
      // An empty sequence reads nothing further; a delimiter ends a defined-length one.
      {Header(ex, 0x0008, 0x1115, "SQ", 0) + Header(ex, 0x0008, 0x1116, "SQ", 100) + Item(0) +
           kSequenceEnd,
       {"(0008, 1115) VR=SQ Length=0<=>0x0",
        "(0008, 1116) VR=SQ Length=100<=>0x64\r\n(FFFE, E000) VR= Length=0<=>0x0" + sequenceEnd}},
      // UN of undefined length holds items in the current syntax.
      {Header(ex, 0x0009, 0x1010, "UN", kUndefinedLength) + Item(10) +
           Element(ex, 0x0008, 0x1150, "UI", "1.") + kSequenceEnd,
       {"(0009, 1010) VR=UN Length=4294967295<=>0xFFFFFFFF\r\n(FFFE, E000) VR= "
        "Length=10<=>0xA\r\n(0008, 1150) VR=UI Length=2<=>0x2 Value=[1.]" +
        sequenceEnd}},
  };
  for (const auto& [bytes, texts] : cases) {
    Texts expected = texts;
    expected.push_back(kPatientText);
    EXPECT_EQ(Parsed(bytes + Patient(ex), ex), expected) << testing::PrintToString(bytes);
  }
  // Implicit OW/OB and US or SS are folded.
  EXPECT_EQ(
      Parsed(Element(im, 0x7FE0, 0x0010, "", "ab") + Element(im, 0x0028, 0x0106, "", U16(7)), im),
      (Texts{"(7FE0, 0010) VR=OB Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]",
             "(0028, 0106) VR=US Length=2<=>0x2 Value=[7<=>0x7]"}));
}

// OB and OW of undefined length hold fragments; an item delimiter at the top ends the parse.
TEST_F(ParserTest, FragmentsAreBinaryItemsWithTheirBytes) {
  DicomData data(false);
  ParserOver(Header(ex, 0x7FE0, 0x0010, "OW", kUndefinedLength) + Item(0) + Item(2) + "\x01\x02" +
                 kSequenceEnd + Patient(ex) + kItemEnd + "\x01",
             ex)
      ->Parse(data);
  EXPECT_EQ(TextsOf(data).back(), "(FFFE, E00D) VR= Length=0<=>0x0");
  EXPECT_EQ(TextsOf(data).at(1), kPatientText);
  const auto& items = dynamic_cast<const VRSequence&>(*data.Elements().at(0)).Elements();
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(dynamic_cast<const VRBinarySequenceItem&>(*items[0]).GetData(), nullptr);
  const auto& fragment = dynamic_cast<const VRBinarySequenceItem&>(*items[1]);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(fragment.GetData()), 2), "\x01\x02");
  EXPECT_EQ(items[2]->ToString(), "(FFFE, E0DD) VR= Length=0<=>0x0");
}

// The transfer syntax of the files of FileParserDcmtkTest is known; an unknown one leaves the
// syntax all zero, with a VR and a 32-bit length, and items under it fall back on the first
// guess. A second, empty transfer syntax changes nothing; group 2 stays explicit.
TEST_F(ParserTest, AnUnknownTransferSyntaxReadsAVRAndALongLength) {
  const std::unique_ptr<Parser> parser = ParserOver(
      Element(ex, 0x0002, 0x0010, "UI", "1.2.3.4.") + Header(ex, 0x0002, 0x0010, "UI", 0) +
          Header(kUnset, 0x0008, 0x1115, "SQ", 18) + Item(10) +
          Element(ex, 0x0028, 0x0010, "US", U16(1)) + Patient(kUnset),
      ex);
  DicomData data(false);
  parser->Parse(data);
  EXPECT_EQ(TextsOf(data).back(), kPatientText);
  EXPECT_EQ(parser->GetVRFieldSize(0x0008, 0x0005), 2u);
  EXPECT_EQ(parser->GetLengthFieldSize("US", 0x0008, 0x0005), 4u);
  EXPECT_EQ(parser->GetLengthFieldSize("US", 0x0002, 0x0010), 2u);
  EXPECT_EQ(parser->GetVRFieldSize(kItemGroup, kItem), 0u);
}

// A data set of explicit syntax whose sequence holds: a plain item twice, a plain item of undefined
// length, an item that isn't plain; the patient's name behind it.
std::string WithItems() {
  const std::string plain = Element(ex, 0x0004, 0x1430, "CS", "IMAGE ");
  const std::string notPlain = Element(ex, 0x0004, 0x1430, "SS", "ab");
  const auto size = [](const std::string& bytes) { return static_cast<std::uint32_t>(bytes.size()); };
  return Element(ex, 0x0002, 0x0010, "UI", std::string("1.2.840.10008.1.2.1\0", 20)) +
         Header(ex, 0x0004, 0x1220, "SQ", kUndefinedLength) + Item(size(plain)) + plain +
         Item(size(plain)) + plain + Item(kUndefinedLength) + plain + kItemEnd +
         Item(size(notPlain)) + notPlain + kSequenceEnd + Patient(ex);
}

// Plain items of defined length at the top level are offered first: one taken is gone, one declined
// is parsed. The others are never offered.
TEST_F(ParserTest, PlainItemsAreOfferedBeforeTheyAreParsed) {
  const std::unique_ptr<Parser> parser = ParserOver(WithItems(), ex);
  std::vector<std::uint32_t> offered;
  parser->SetPlainItemHandler([&](const VR& sequence, const PlainItem& item, std::uint32_t length) {
    EXPECT_EQ(sequence.element, 0x1220);
    EXPECT_EQ(item.Elements()[0].value, "IMAGE ");
    offered.push_back(length);
    return offered.size() == 1;
  });
  std::size_t entries = 0;
  parser->SetEntryHandler([&](const VR&, std::unique_ptr<VR>&) { ++entries; });
  DicomData data(false);
  parser->Parse(data);
  EXPECT_EQ(offered, (std::vector<std::uint32_t>{14, 14}));
  EXPECT_EQ(entries, 4u);
  const auto& items = dynamic_cast<const VRSequence&>(*data.Elements().at(1)).Elements();
  EXPECT_EQ(items.size(), 4u);
  EXPECT_EQ(TextsOf(data).back(), kPatientText);
}

// depth sequences of undefined length, each in the one item of the one above.
std::string Nested(int depth) {
  std::string bytes;
  for (int level = 0; level < depth; ++level) {
    bytes += Header(ex, 0x0008, 0x1115, "SQ", kUndefinedLength) + Item(kUndefinedLength);
  }
  for (int level = 0; level < depth; ++level) bytes += kItemEnd + kSequenceEnd;
  return bytes;
}

// A cut anywhere is left to FileParserDcmtkTest; here a case of each kind.
TEST_F(ParserTest, FailuresHaveTheirTexts) {
  const std::string cs = Element(ex, 0x0008, 0x0005, "CS", "AB");
  const std::string reinsert = "Attempt to reinsert an existing VR. \r\nVR= ";
  const struct {
    const char* name;
    std::string bytes;
    std::string message;
    const char* unit;
  } cases[] = {
      {"a stray byte", Patient(ex) + "\x08", kTooShort, "BufferReader"},
      {"a false length", Header(ex, 0x0009, 0x1001, "OB", 0xFFFFFFF0), kTooShort, "BufferReader"},
      {"a cut item", Header(ex, 0x0008, 0x1115, "SQ", kUndefinedLength) + Item(kUndefinedLength),
       kTooShort, "BufferReader"},
      {"an undefined item in a defined sequence",
       Header(ex, 0x0008, 0x1115, "SQ", 8) + Item(kUndefinedLength),
       "Defined length sequence contains undefined length item.", "Parser"},
      {"no item where one must stand", Header(ex, 0x0008, 0x1115, "SQ", 10) + cs,
       "Invalid tag found where a sequence item was expected.", "Parser"},
      {"nesting too deep", Nested(Parser::kMaxSequenceDepth + 1),
       "Sequences are nested deeper than 64 levels.", "Parser"},
      {"a duplicate out of order", cs + Patient(ex) + cs,
       reinsert + "(0008, 0005) VR=CS Length=2<=>0x2 Value=[AB]", "VRContainer"},
  };
  for (const auto& test : cases) {
    DicomData data(false);
    EXPECT_PRED3(IsPlaced, RaisedMessage([&] { ParserOver(test.bytes, ex)->Parse(data); }),
                 test.message, test.unit)
        << test.name;
  }
  // Elements already in the container count.
  DicomData data(false);
  ParserOver(Patient(ex), ex)->Parse(data);
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { ParserOver(Patient(ex), ex)->Parse(data); }),
               reinsert + kPatientText, "VRContainer");
  EXPECT_EQ(Parsed(Nested(Parser::kMaxSequenceDepth), ex).size(), 1u);
}

TEST_F(ParserTest, EachElementIsTracedAtLevelThree) {
  // The log of the process opens once; ctest runs each test in a process of its own.
  if (halvorine::GetTraceLog().IsEnabled(1)) GTEST_SKIP() << "an earlier test opened the log";
  const halvorine::TempFolder folder;
  halvorine::GetTraceLog().Initialize(halvorine::ToWide(folder.Path("trace.log")), 3);
  Parsed(Header(ex, 0x0008, 0x0005, "XX", 0) + Patient(ex), ex);
  // Nor is an item offered as plain, whose elements would go untraced.
  const std::unique_ptr<Parser> parser = ParserOver(WithItems(), ex);
  parser->SetPlainItemHandler([](const VR&, const PlainItem&, std::uint32_t) -> bool {
    ADD_FAILURE() << "offered";
    return true;
  });
  DicomData data(false);
  parser->Parse(data);
  const std::string log = halvorine::ReadWholeFile(folder.Path("trace.log"));
  EXPECT_NE(log.find(" --- The parsed VR is NULL.\r\n"), std::string::npos) << log;
  EXPECT_NE(log.find(" --- The parsed VR is: " + kPatientText + "\r\n"), std::string::npos) << log;
}

}  // namespace
}  // namespace DicomEngine
