#include "engine/parsing/FileParser.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "engine/elements/DicomData.h"
#include "support/TextConversion.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;
using halvorine::ToWide;

const std::string kMarked = std::string(128, '\0') + "DICM";
// (0002,0000) UL 4 in explicit form: its sixth byte is the 'L' of "UL".
const std::string kGroupLength = std::string("\x02\x00\x00\x00UL\x04\x00\x00\x00\x00\x00", 12);

// (0008,0005) in implicit form with the given 32-bit length and as many value bytes.
std::string ImplicitCharacterSet(std::uint32_t length) {
  const std::string header = {
      0x08, 0x00, 0x05, 0x00, static_cast<char>(length & 0xFF), static_cast<char>(length >> 8),
      0x00, 0x00};
  return header + std::string(length, 'A');
}

struct Opened {
  bool accepted = false;
  std::uint32_t dataOffset = 0;
  std::uint32_t vrField = 0;  // of group 8, which tells the first guess
  std::size_t elements = 0;
  std::string failure;  // of Parse
};

Opened OpenBytes(const std::string& bytes) {
  const halvorine::TempFolder folder;
  halvorine::WriteWholeFile(folder.Path("f.dcm"), bytes);
  FileParser parser;
  Opened opened;
  opened.accepted = parser.Open(ToWide(folder.Path("f.dcm")));
  opened.dataOffset = parser.GetDataOffset();
  opened.vrField = parser.GetVRFieldSize(0x0008, 0x0005);
  DicomData data(false);
  opened.failure = RaisedMessage([&] { parser.Parse(data); });
  opened.elements = data.Elements().size();
  return opened;
}

TEST(FileParserTest, TheHeaderDecidesWhereTheElementsBeginAndTheFirstGuess) {
  struct Case {
    const char* name;
    std::string bytes;
    bool accepted;
    std::uint32_t dataOffset, vrField;
    std::size_t elements;
  };
  const Case cases[] = {
      {"the mark alone", kMarked, true, 132, 0, 0},
      {"the mark and an explicit group length", kMarked + kGroupLength, true, 132, 2, 1},
      {"a bare implicit data set", ImplicitCharacterSet(10), true, 0, 0, 1},
      {"a first element too long for the guess", ImplicitCharacterSet(0x0B00), true, 0, 2, 0},
      {"a sixth byte from 0x80 up", std::string("\x08\x00\x05\x00\x00\x80", 6), true, 0, 0, 0},
      {"a short file of group 0008", std::string("\x08\x00\x05", 3), true, 0, 0, 0},
      {"group 8000", std::string("\x00\x80\x00\x00", 4), true, 0, 0, 0},
      {"group 0800", std::string("\x00\x08\x00\x00", 4), false, 0, 0, 0},
      {"an empty file", "", false, 0, 0, 0},
      {"the mark one byte late", std::string(129, '\0') + "DICM", false, 0, 0, 0},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    const Opened opened = OpenBytes(test.bytes);
    EXPECT_EQ(opened.accepted, test.accepted);
    EXPECT_EQ(opened.dataOffset, test.dataOffset);
    if (!test.accepted) {
      EXPECT_PRED3(IsPlaced, opened.failure, "The parser buffer is NULL.", "Parser");
      continue;
    }
    EXPECT_EQ(opened.vrField, test.vrField);
    if (test.elements > 0) {
      EXPECT_EQ(opened.failure, "nothing raised");
    }
    EXPECT_EQ(opened.elements, test.elements);
  }
}

TEST(FileParserTest, ANameWithoutADotIsTriedWithDcm) {
  const halvorine::TempFolder folder;
  if (folder.Path().find('.') != std::string::npos) GTEST_SKIP() << "a dot in $TMPDIR";
  halvorine::WriteWholeFile(folder.Path("image.dcm"), kMarked);
  FileParser parser;
  EXPECT_TRUE(parser.Open(ToWide(folder.Path("image"))));
  EXPECT_EQ(parser.GetDataOffset(), 132u);
}

TEST(FileParserTest, FilesThatCantBeOpenedFailWithTheNamePassedIn) {
  const halvorine::TempFolder folder;
  const std::string dotted = folder.MakeFolder("a.b") + "/image";
  halvorine::WriteWholeFile(dotted + ".dcm", kMarked);
  for (const std::string& name : {folder.Path("missing"), dotted}) {
    FileParser parser;
    EXPECT_PRED3(IsPlaced, RaisedMessage([&] { parser.Open(ToWide(name)); }),
                 "The " + name + " file cannot be opened. The last error is (in hexa): 0x" +
                     std::to_string(ENOENT),
                 "FileParser");
  }
  FileParser parser;
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { parser.Open(std::u16string()); }),
               "The name of the file to parse is empty.", "FileParser");
}

}  // namespace
}  // namespace DicomEngine
