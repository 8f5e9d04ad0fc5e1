#include "engine/parsing/Parser.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/DicomData.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;
using Texts = std::vector<std::string>;

constexpr SyntaxRecord kUnset;
const char kTooShort[] = "The buffer is not long enough to perform the requested read operation.";

std::string U16(std::uint16_t value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
}
std::string U32(std::uint32_t value) { return U16(value & 0xFFFF) + U16(value >> 16); }
std::string Tag(std::uint16_t group, std::uint16_t element) { return U16(group) + U16(element); }

// Tag, VR and length in the given syntax's form; code may be any two bytes.
std::string Header(SyntaxRecord syntax, std::uint16_t group, std::uint16_t element,
                   const std::string& code, std::uint32_t length) {
  if (syntax.vrForm == kImplicitVR) return Tag(group, element) + U32(length);
  if (syntax.vrForm == 0) return Tag(group, element) + code + U32(length);
  const bool longForm = code == "OB" || code == "OW" || code == "SQ" || code == "UN" ||
                        code == "UT" || code == std::string(2, '\0');
  return Tag(group, element) + code + (longForm ? U16(0) + U32(length) : U16(length));
}
std::string Element(SyntaxRecord syntax, std::uint16_t group, std::uint16_t element,
                    const std::string& code, const std::string& value) {
  return Header(syntax, group, element, code, static_cast<std::uint32_t>(value.size())) + value;
}
std::string Item(std::uint32_t length) { return Tag(kItemGroup, kItem) + U32(length); }
const std::string kItemEnd = Tag(kItemGroup, kItemDelimiter) + U32(0);
const std::string kSequenceEnd = Tag(kItemGroup, kSequenceDelimiter) + U32(0);

const std::string kPatientText = "(0010, 0010) VR=PN Length=8<=>0x8 Value=[Doe^John]";
std::string Patient(SyntaxRecord syntax) {
  return Element(syntax, 0x0010, 0x0010, "PN", "Doe^John");
}

// A parser over bytes, cut into chunks of chunkSize bytes (0: one chunk).
std::unique_ptr<Parser> ParserOver(const std::string& bytes, SyntaxRecord first,
                                   std::size_t chunkSize = 0) {
  std::vector<std::size_t> cuts;
  for (std::size_t at = chunkSize; chunkSize > 0 && at < bytes.size(); at += chunkSize) {
    cuts.push_back(at);
  }
  return std::make_unique<Parser>(std::make_unique<BufferReader>(Chunked(bytes, cuts)), first);
}

Texts TextsOf(const VRContainer& container) {
  Texts texts;
  for (const auto& element : container.Elements()) texts.push_back(element->ToString());
  return texts;
}

Texts Parsed(const std::string& bytes, SyntaxRecord first, std::size_t chunkSize = 0) {
  DicomData data(false);
  ParserOver(bytes, first, chunkSize)->Parse(data);
  return TextsOf(data);
}

std::string FailureOf(const std::string& bytes, SyntaxRecord first) {
  DicomData data(false);
  return RaisedMessage([&] { ParserOver(bytes, first)->Parse(data); });
}

class ParserTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
  }
};

// Each case's bytes are followed by the patient's name, which shows where the cursor stood.
TEST_F(ParserTest, ElementsAreMadeAndConsumedAsTheirCodeSays) {
  const SyntaxRecord ex = kExplicitLittleEndian;
  const SyntaxRecord im = kImplicitLittleEndian;
  const std::string longText(0xFFFF, 'A');
  const std::string uid = Element(ex, 0x0008, 0x1150, "UI", "1.2.");
  const std::string uidText = "(0008, 1150) VR=UI Length=4<=>0x4 Value=[1.2.]";
  const std::string sequenceEnd = "(FFFE, E0DD) VR= Length=0<=>0x0";
  const struct {
    const char* name;
    SyntaxRecord syntax;
    std::string bytes;
    Texts expected;
  } cases[] = {
      {"OT has the short form and is binary",
       ex,
       Element(ex, 0x0009, 0x1001, "OT", "ab"),
       {"(0009, 1001) VR=OT Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]"}},
      {"a VR of NUL bytes is UN",
       ex,
       Element(ex, 0x0009, 0x1002, std::string(2, '\0'), "ab"),
       {"(0009, 1002) VR=UN Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]"}},
      {"US of 3 bytes reads two numbers from 4",
       ex,
       Header(ex, 0x0028, 0x0010, "US", 3) + U16(1) + U16(2),
       {"(0028, 0010) VR=US Length=3<=>0x3 Value=[1<=>0x1]; Value=[2<=>0x2];"}},
      {"AT under 4 bytes reads nothing",
       ex,
       Header(ex, 0x0028, 0x0009, "AT", 2),
       {"(0028, 0009) VR=AT Length=2<=>0x2"}},
      {"an unknown code leaves the cursor on the value",
       ex,
       Header(ex, 0x0008, 0x0005, "XX", 4),
       {}},
      {"texts end at a NUL and keep their blanks",
       ex,
       Element(ex, 0x0008, 0x0016, "UI", std::string("1.2.3\0", 6)) +
           Element(ex, 0x0008, 0x0060, "CS", std::string("A\0B ", 4)) +
           Element(ex, 0x0008, 0x0070, "LO", "  X "),
       {"(0008, 0016) VR=UI Length=6<=>0x6 Value=[1.2.3]",
        "(0008, 0060) VR=CS Length=4<=>0x4 Value=[A]",
        "(0008, 0070) VR=LO Length=4<=>0x4 Value=[  X ]"}},
      {"a short length of 0xFFFF is 65535 bytes",
       ex,
       Element(ex, 0x0008, 0x0080, "LO", longText),
       {"(0008, 0080) VR=LO Length=65535<=>0xFFFF Value=[" + longText + "]"}},
      {"implicit OW/OB and US or SS are folded",
       im,
       Element(im, 0x7FE0, 0x0010, "", "ab") + Element(im, 0x0028, 0x0106, "", U16(7)),
       {"(7FE0, 0010) VR=OB Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]",
        "(0028, 0106) VR=US Length=2<=>0x2 Value=[7<=>0x7]"}},
      {"implicit private, group length and unknown tags",
       im,
       Element(im, 0x0009, 0x1001, "", "ab") + Element(im, 0x0009, 0x0000, "", U32(2)) +
           Element(im, 0x0008, 0x0002, "", "cd"),
       {"(0009, 1001) VR=UN Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]",
        "(0009, 0000) VR=UL Length=4<=>0x4 Value=[2<=>0x2]",
        "(0008, 0002) VR=UN Length=2<=>0x2 Value=BINARY Length=[2<=>0x2]"}},
      {"no syntax: a VR and a 32-bit length",
       kUnset,
       Element(kUnset, 0x0028, 0x0010, "US", U16(3)),
       {"(0028, 0010) VR=US Length=2<=>0x2 Value=[3<=>0x3]"}},
      {"an empty sequence reads nothing further",
       ex,
       Header(ex, 0x0008, 0x1115, "SQ", 0),
       {"(0008, 1115) VR=SQ Length=0<=>0x0"}},
      {"a delimiter ends a defined-length sequence",
       ex,
       Header(ex, 0x0008, 0x1115, "SQ", 100) + Item(0) + kSequenceEnd,
       {"(0008, 1115) VR=SQ Length=100<=>0x64\r\n(FFFE, E000) VR= Length=0<=>0x0\r\n" +
        sequenceEnd}},
      {"UN of undefined length holds items in the current syntax",
       ex,
       Header(ex, 0x0009, 0x1010, "UN", kUndefinedLength) + Item(12) + uid + kSequenceEnd,
       {"(0009, 1010) VR=UN Length=4294967295<=>0xFFFFFFFF\r\n(FFFE, E000) VR= "
        "Length=12<=>0xC\r\n" +
        uidText + "\r\n" + sequenceEnd}},
      {"OB of undefined length holds fragments",
       ex,
       Header(ex, 0x7FE0, 0x0010, "OB", kUndefinedLength) + Item(0) + Item(4) + "\xFF\xD8\xFF\xD9" +
           kSequenceEnd,
       {"(7FE0, 0010) VR=OB Length=4294967295<=>0xFFFFFFFF\r\n(FFFE, E000) VR= Length=0<=>0x0 "
        "Value=BINARY Length=[0<=>0x0]\r\n(FFFE, E000) VR= Length=4<=>0x4 Value=BINARY "
        "Length=[4<=>0x4]\r\n" +
        sequenceEnd}},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    Texts expected = test.expected;
    expected.push_back(kPatientText);
    EXPECT_EQ(Parsed(test.bytes + Patient(test.syntax), test.syntax), expected);
  }
}

TEST_F(ParserTest, FragmentsAreBinaryItemsWithTheirBytes) {
  const SyntaxRecord ex = kExplicitLittleEndian;
  DicomData data(false);
  ParserOver(Header(ex, 0x7FE0, 0x0010, "OW", kUndefinedLength) + Item(0) + Item(2) + "\x01\x02" +
                 kSequenceEnd,
             ex)
      ->Parse(data);
  const auto& items = dynamic_cast<const VRSequence&>(*data.Elements().at(0)).Elements();
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(dynamic_cast<const VRBinarySequenceItem&>(*items[0]).GetData(), nullptr);
  const auto& fragment = dynamic_cast<const VRBinarySequenceItem&>(*items[1]);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(fragment.GetData()), 2), "\x01\x02");
  EXPECT_NE(dynamic_cast<const VRSequenceItem*>(items[2].get()), nullptr);
  // An item delimiter at the top ends the parse and stays last.
  EXPECT_EQ(Parsed(Patient(ex) + kItemEnd + "\x01", ex),
            (Texts{kPatientText, "(FFFE, E00D) VR= Length=0<=>0x0"}));
}

TEST_F(ParserTest, ChunkBordersChangeNothing) {
  const SyntaxRecord ex = kExplicitLittleEndian;
  const std::string bytes = Header(ex, 0x0008, 0x1115, "SQ", kUndefinedLength) +
                            Item(kUndefinedLength) + Patient(ex) + kItemEnd + kSequenceEnd +
                            Element(ex, 0x0018, 0x9087, "FD", U32(0) + U32(0x3FE00000));
  const Texts whole = Parsed(bytes, ex);
  for (std::size_t chunkSize = 1; chunkSize <= 9; ++chunkSize) {
    EXPECT_EQ(Parsed(bytes, ex, chunkSize), whole) << "chunks of " << chunkSize;
  }
}

std::string Meta(const std::string& transferSyntax) {
  const SyntaxRecord ex = kExplicitLittleEndian;
  return Element(ex, 0x0002, 0x0000, "UL", U32(0)) +
         Element(ex, 0x0002, 0x0010, "UI", transferSyntax);
}

// Group 2 stays explicit and items have no VR; a second, empty transfer syntax changes nothing.
TEST_F(ParserTest, TheFirstTransferSyntaxDecidesTheGroupsAboveTwo) {
  const struct {
    const char* name;
    std::string uid;
    SyntaxRecord dataSet;  // how the elements above group 2 are written
    std::uint32_t vrField, shortLength, longLength;
  } cases[] = {
      {"implicit, padded with NUL", std::string("1.2.840.10008.1.2\0", 18), kImplicitLittleEndian,
       0, 4, 4},
      {"implicit, padded with a blank", "1.2.840.10008.1.2 ", kImplicitLittleEndian, 0, 4, 4},
      {"explicit", std::string("1.2.840.10008.1.2.1\0", 20), kExplicitLittleEndian, 2, 2, 6},
      {"unknown: all zero", "1.2.3.4.", kUnset, 2, 4, 4},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    const std::unique_ptr<Parser> parser =
        ParserOver(Meta(test.uid) + Header(kExplicitLittleEndian, 0x0002, 0x0010, "UI", 0) +
                       Patient(test.dataSet),
                   kExplicitLittleEndian);
    DicomData data(false);
    parser->Parse(data);
    EXPECT_EQ(TextsOf(data).back(), kPatientText);
    EXPECT_EQ(parser->GetVRFieldSize(0x0008, 0x0005), test.vrField);
    for (const char* code : {"OB", "OW", "SQ", "UN", "UT"}) {
      EXPECT_EQ(parser->GetLengthFieldSize(code, 0x0009, 0x1001), test.longLength) << code;
    }
    for (const char* code : {"", "OT", "US", "UI", "XX"}) {
      EXPECT_EQ(parser->GetLengthFieldSize(code, 0x0008, 0x0005), test.shortLength) << code;
    }
    EXPECT_EQ(parser->GetVRFieldSize(0x0002, 0x0010), 2u);
    EXPECT_EQ(parser->GetLengthFieldSize("UI", 0x0002, 0x0010), 2u);
    EXPECT_EQ(parser->GetVRFieldSize(kItemGroup, kItem), 0u);
    EXPECT_EQ(parser->GetLengthFieldSize("", kItemGroup, kItem), 4u);
  }
  // Items under an unknown syntax fall back on the first guess.
  EXPECT_EQ(
      Parsed(Meta("1.2.3.4.") + Header(kUnset, 0x0008, 0x1115, "SQ", 18) + Item(10) +
                 Element(kExplicitLittleEndian, 0x0028, 0x0010, "US", U16(1)) + Patient(kUnset),
             kExplicitLittleEndian)
          .back(),
      kPatientText);
}

// depth sequences of undefined length, each in the one item of the one above.
std::string Nested(int depth) {
  const SyntaxRecord ex = kExplicitLittleEndian;
  std::string bytes;
  for (int level = 0; level < depth; ++level) {
    bytes += Header(ex, 0x0008, 0x1115, "SQ", kUndefinedLength) + Item(kUndefinedLength);
  }
  for (int level = 0; level < depth; ++level) bytes += kItemEnd + kSequenceEnd;
  return bytes;
}

TEST_F(ParserTest, FailuresHaveTheirTexts) {
  const SyntaxRecord ex = kExplicitLittleEndian;
  const std::string cs = Element(ex, 0x0008, 0x0005, "CS", "AB");
  struct Case {
    const char* name;
    std::string bytes;
    std::string message;
    const char* unit;
  };
  const Case cases[] = {
      {"a stray byte", Patient(ex) + "\x08", kTooShort, "BufferReader"},
      {"a cut length field", Tag(0x0008, 0x0005) + "CS\x02", kTooShort, "BufferReader"},
      {"a cut value", Header(ex, 0x0008, 0x0005, "CS", 4) + "AB", kTooShort, "BufferReader"},
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
      {"a duplicate", cs + Patient(ex) + cs,
       "Attempt to reinsert an existing VR. \r\nVR= (0008, 0005) VR=CS Length=2<=>0x2 Value=[AB]",
       "VRContainer"},
  };
  for (const Case& test : cases) {
    EXPECT_PRED3(IsPlaced, FailureOf(test.bytes, ex), test.message, test.unit) << test.name;
  }
  EXPECT_PRED3(IsPlaced, RaisedMessage([] {
                 DicomData data(false);
                 Parser().Parse(data);
               }),
               "The parser buffer is NULL.", "Parser");
  // Nesting up to the bound is accepted, and so are empty duplicates.
  EXPECT_EQ(Parsed(Nested(Parser::kMaxSequenceDepth), ex).size(), 1u);
  const std::string empty = Header(ex, 0x0008, 0x0005, "CS", 0);
  EXPECT_EQ(Parsed(empty + Patient(ex) + empty + empty, ex).size(), 4u);
  // Elements already in the container count.
  DicomData data(false);
  ParserOver(Patient(ex), ex)->Parse(data);
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { ParserOver(Patient(ex), ex)->Parse(data); }),
               "Attempt to reinsert an existing VR. \r\nVR= " + kPatientText, "VRContainer");
}

TEST_F(ParserTest, EachElementIsTracedAtLevelThree) {
  // The log of the process opens once; ctest runs each test in a process of its own.
  if (halvorine::GetTraceLog().IsEnabled(1)) GTEST_SKIP() << "an earlier test opened the log";
  const halvorine::TempFolder folder;
  halvorine::GetTraceLog().Initialize(halvorine::ToWide(folder.Path("trace.log")), 3);
  ASSERT_TRUE(halvorine::GetTraceLog().IsEnabled(3));
  ASSERT_FALSE(halvorine::GetTraceLog().IsEnabled(4));
  const SyntaxRecord ex = kExplicitLittleEndian;
  Parsed(Header(ex, 0x0008, 0x0005, "XX", 0) + Patient(ex), ex);
  const std::string log = halvorine::ReadWholeFile(folder.Path("trace.log"));
  EXPECT_NE(log.find(" --- The parsed VR is NULL.\r\n"), std::string::npos) << log;
  EXPECT_NE(log.find(" --- The parsed VR is: " + kPatientText + "\r\n"), std::string::npos) << log;
}

}  // namespace
}  // namespace DicomEngine
