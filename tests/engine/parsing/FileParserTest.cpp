#include "engine/parsing/FileParser.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <utility>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "engine/elements/DicomData.h"
#include "engine/encoding/ElementBytes.h"
#include "support/TextConversion.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;
using halvorine::ToWide;

const std::string kMarked = std::string(128, '\0') + "DICM";
// (0002,0000) UL 4 in explicit form: its sixth byte is the 'L' of "UL".
const std::string kGroupLength = halvorine::Encoded(0x0002, 0x0000, "UL", std::string(4, '\0'));

// (0008,0005) in implicit form with the given length and as many value bytes.
std::string ImplicitCharacterSet(std::uint32_t length) {
  return halvorine::ElementHeader(0x0008, 0x0005, "", length, true) + std::string(length, 'A');
}

// "offset vrField elements" after Open and Parse, the VR field of group 8 telling the first
// guess; "refused" when Open refuses the file, whose Parse must then fail.
std::string Opened(const std::string& bytes) {
  const halvorine::TempFolder folder;
  halvorine::WriteWholeFile(folder.Path("f.dcm"), bytes);
  FileParser parser;
  DicomData data(false);
  if (!parser.Open(ToWide(folder.Path("f.dcm")))) {
    EXPECT_PRED3(IsPlaced, RaisedMessage([&] { parser.Parse(data); }), "The parser buffer is NULL.",
                 "Parser");
    return "refused";
  }
  const std::uint32_t vrField = parser.GetVRFieldSize(0x0008, 0x0005);
  RaisedMessage([&] { parser.Parse(data); });
  return std::to_string(parser.GetDataOffset()) + " " + std::to_string(vrField) + " " +
         std::to_string(data.Elements().size());
}

TEST(FileParserTest, TheHeaderDecidesWhereTheElementsBeginAndTheFirstGuess) {
  const std::pair<std::string, const char*> cases[] = {
      {kMarked, "132 0 0"},
      {kMarked + kGroupLength, "132 2 1"},
      {ImplicitCharacterSet(10), "0 0 1"},
      {ImplicitCharacterSet(0x0B00), "0 2 0"},                // too long for the guess
      {std::string("\x08\x00\x05\x00\x00\x80", 6), "0 0 0"},  // a sixth byte from 0x80 up
      {std::string("\x08\x00\x05", 3), "0 0 0"},
      {std::string("\x00\x80\x00\x00", 4), "0 0 0"},
      {std::string("\x00\x08\x00\x00", 4), "refused"},
      {"", "refused"},
      {std::string(129, '\0') + "DICM", "refused"},
  };
  for (const auto& [bytes, expected] : cases) {
    EXPECT_EQ(Opened(bytes), expected)
        << testing::PrintToString(bytes.substr(0, 8)) << " of " << bytes.size();
  }
}

// A name without a dot is tried with ".dcm"; a dot in a folder's name counts.
TEST(FileParserTest, OpenTakesTheNameOrTheNameWithDcm) {
  const halvorine::TempFolder folder;
  if (folder.Path().find('.') != std::string::npos) GTEST_SKIP() << "a dot in $TMPDIR";
  halvorine::WriteWholeFile(folder.Path("image.dcm"), kMarked);
  FileParser parser;
  EXPECT_TRUE(parser.Open(ToWide(folder.Path("image"))));
  EXPECT_EQ(parser.GetDataOffset(), 132u);
  const std::string dotted = folder.MakeFolder("a.b") + "/image";
  halvorine::WriteWholeFile(dotted + ".dcm", kMarked);
  for (const std::string& name : {folder.Path("missing"), dotted}) {
    EXPECT_PRED3(IsPlaced, RaisedMessage([&] { parser.Open(ToWide(name)); }),
                 "The " + name + " file cannot be opened. The last error is (in hexa): 0x" +
                     std::to_string(ENOENT),
                 "FileParser");
  }
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { parser.Open(std::u16string()); }),
               "The name of the file to parse is empty.", "FileParser");
}

}  // namespace
}  // namespace DicomEngine
