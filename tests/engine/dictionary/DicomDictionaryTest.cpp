#include "engine/dictionary/DicomDictionary.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "platform/FileDescriptor.h"
#include "platform/ModulePath.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;

const char kNothingRaised[] = "nothing raised";
const char kUnit[] = "DicomDictionary";
const std::string kShippedFile = halvorine::GetModuleDirectory() + "dicom_dictionary.txt";

// A fresh dictionary, and a file of this test's own to load into it.
class DicomDictionaryTest : public testing::Test {
 protected:
  // Writes content to the file and loads it: the failure's text, or "nothing raised".
  std::string Load(const std::string& content, DicomDictionary& dictionary) {
    halvorine::WriteWholeFile(path_, content);
    return RaisedMessage([&] { dictionary.LoadDictionary(path_); });
  }

  halvorine::TempFolder temp_;
  const std::string path_ = temp_.Path("dicom_dictionary.txt");
  DicomDictionary dictionary_;
};

// A bad line fails with its text; group and element are then 0.
TEST_F(DicomDictionaryTest, ReadsTheLineFormatAndFailsOnBadLines) {
  const char kSection[] = "The dictionary group element section is not well formatted.";
  const char kNumber[] = "Dictionary expects a numeric value.";
  const char kDuplicate[] =
      "The standard DICOM dictionary file contains a duplicated group-element paire.";
  // Codes of two capitals, and other texts.
  const char kCodes[] = "(0008,0005) VR=\"ob\"\n(0008,0006) VR=\"OB\"\n(0008,0007) VR=\"O\xC4\"";
  const struct {
    const char* content;
    std::uint16_t group, element;
    const char* vr;  // or the failure's text
  } cases[] = {
      {"(0010,0010) VR=\"PN\" VM=\"1\" Name=\"Patient's Name\"", 0x0010, 0x0010, "PN"},
      {"(7fe0,0010) VR=\"OW/OB\"", 0x7FE0, 0x0010, "OW/OB"},
      {"(8,5) VR=\"CS\"", 0x0008, 0x0005, "CS"},
      {"(10008,00005) VR=\"CS\"", 0x0008, 0x0005, "CS"},
      // 'x' counts as its code minus that of '0': ((6 * 16 + 0) * 16 + 72) * 16 + 72.
      {"(60xx,3000) VR=\"OB\"", 0x64C8, 0x3000, "OB"},
      {"(0008,0005)   VR =  \" CS \"", 0x0008, 0x0005, "CS"},
      {"(0008,0005)\t \tVR=\"CS\"", 0x0008, 0x0005, "CS"},
      {"(0008,0005) VR\t=\"CS\"", 0x0008, 0x0005, ""},
      {"(0008,0005) VR=\"CS\" VR=\"SH\"", 0x0008, 0x0005, "SH"},
      // A quote in a key is part of it; what stands between '=' and the quote is skipped.
      {"(0008,0005) x\"VR=\"CS\" VR=\"SH\"", 0x0008, 0x0005, "SH"},
      {"(0008,0005) VR=x\"CS\"", 0x0008, 0x0005, "CS"},
      // Blanks, tabs and other characters below '"' don't end a value; nor do bytes above 127.
      {"(0008,0005) VR=\"A!B\tC D\"", 0x0008, 0x0005, "A!B\tC D"},
      {kCodes, 0x0008, 0x0005, "ob"},
      {kCodes, 0x0008, 0x0006, "OB"},
      {kCodes, 0x0008, 0x0007, "O\xC4"},
      {"(0008,0005) VR=\"CS VM=\"1\"", 0x0008, 0x0005, "CS VM="},
      {"(0008,0005) VR=\"CS", 0x0008, 0x0005, "CS"},
      {"(0008,0005) VR=CS", 0x0008, 0x0005, ""},
      {"(0008,0005) Foo=\"X\" vr=\"SH\" VR=\"CS\"", 0x0008, 0x0005, "CS"},
      {"(0005,0010) VR=\"LO\" Owner=\"SOME CREATOR\"", 0x0005, 0x0010, "LO"},
      {"(0029,1010) VR=\"OB\" Owner=\"SOME CREATOR\"", 0x0029, 0x1010, "UN"},
      // Only a carriage return before a line feed is dropped; lines may come out of order.
      {"(0008,0006) VR=\"SH\r\n(0008,0005) VR=\"CS\r", 0x0008, 0x0006, "SH"},
      {"(0008,0006) VR=\"SH\r\n(0008,0005) VR=\"CS\r", 0x0008, 0x0005, "CS\r"},
      {"(0008,0005) VR=\"  \r", 0x0008, 0x0005, "\r"},
      {"\r\n(0008,0005) VR=\"CS\"", 0x0008, 0x0005, "CS"},
      {"REM a comment\n\nREMARK (0008,0005) VR=\"CS\"\r\nREM\n", 0x0008, 0x0005, "UN"},
      {"(0029,1010) Owner=\"A\"\n(0029,1010) Owner=\"B\"", 0x0029, 0x1010, "UN"},
      {" REM indented", 0, 0, kSection},
      {"rem lower case", 0, 0, kSection},
      {"(0008,0005) VR=\"CS\"\n\r", 0, 0, kSection},
      {"0008,0005) VR=\"CS\"", 0, 0, kSection},
      {"(0008,0005 VR=\"CS\"", 0, 0, kSection},
      {"(00080005) VR=\"CS\"", 0, 0, kSection},
      {"(,0005) VR=\"CS\"", 0, 0, kNumber},
      {"(0009,0010) VR=\"LO\"", 0, 0,
       "The dictionary found a private tag (   9,   10) tag whithout owner."},
      {"(0008,0006) VR=\"CS\"\n(0008,0005) VR=\"CS\"\n(0008,0006) VR=\"CS\"", 0, 0, kDuplicate},
      {"(0029,1010) Owner=\"A\"\n(0029,1010) Owner=\"A\"", 0, 0, kDuplicate},
  };
  for (const auto& line : cases) {
    DicomDictionary dictionary;
    const std::string failure = Load(line.content, dictionary);
    if (line.group == 0) {
      EXPECT_PRED3(IsPlaced, failure, line.vr, kUnit) << line.content;
    } else {
      EXPECT_EQ(failure, kNothingRaised) << line.content;
      EXPECT_EQ(dictionary.GetVR(line.group, line.element), line.vr) << line.content;
    }
  }
  // Every value is trimmed, kept or not, up to the line's end when it has no closing quote.
  for (const char* blanks :
       {"(0008,0005) VR=\"   \"", "(0008,0005) VR=\"CS\" Name=\" \"", "(0008,0005) VR=\"  \r\n"}) {
    DicomDictionary dictionary;
    EXPECT_THROW(Load(blanks, dictionary), std::out_of_range) << blanks;
  }
}

// The name is kept before the file is read: a bad line keeps the entries before it, the same name
// again reads nothing, and another name fails. A missing file counts as loaded.
TEST_F(DicomDictionaryTest, LoadsOneFileOnceAndKeepsAPartialLoad) {
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { dictionary_.LoadDictionary(""); }),
               "The DICOM dictionary file name is NULL or empty.", kUnit);
  EXPECT_PRED3(IsPlaced, Load("(0008,0005) VR=\"CS\"\n(0008\n(0008,0006) VR=\"SH\"", dictionary_),
               "The dictionary group element section is not well formatted.", kUnit);
  EXPECT_EQ(Load("(0008,0006) VR=\"SH\"", dictionary_), kNothingRaised);
  EXPECT_EQ(dictionary_.GetVR(0x0008, 0x0005), "CS");
  EXPECT_EQ(dictionary_.GetVR(0x0008, 0x0006), "UN");
  const std::string other = temp_.Path("other.txt");
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { dictionary_.LoadDictionary(other); }),
               "Already loaded the " + path_ +
                   " dictionary file.\r\nAttempt to load a  second different DICOM "
                   "compatibility file: " +
                   other + ".",
               kUnit);
  DicomDictionary missing;
  EXPECT_EQ(RaisedMessage([&] { missing.LoadDictionary(other); }), kNothingRaised);
  halvorine::WriteWholeFile(other, "(0008,0005) VR=\"CS\"");
  EXPECT_EQ(RaisedMessage([&] { missing.LoadDictionary(other); }), kNothingRaised);
  EXPECT_EQ(missing.GetVR(0x0008, 0x0005), "UN");
}

// Lines of many lengths, so that some cross the blocks the file is read in, with CR LF ends, a
// line longer than a block, and a last line without a feed.
TEST_F(DicomDictionaryTest, ReadsLinesAcrossBlocks) {
  const char* const codes[] = {"CS", "US or SS", "OW/OB", "SQ", "PN"};
  constexpr std::uint16_t kCount = 6000;
  std::string content;
  for (std::uint16_t element = 0; element < kCount; ++element) {
    char tag[16];
    std::snprintf(tag, sizeof tag, "(0010,%04X)", element);
    content += std::string(tag) + " VR=\"" + codes[element % 5] + "\" Name=\"" +
               std::string(element % 97, 'n') + "\"";
    if (element == kCount / 2) content += " Name=\"" + std::string(200000, 'L') + "\"";
    if (element + 1 < kCount) content += "\r\n";
  }
  ASSERT_EQ(Load(content, dictionary_), kNothingRaised);
  for (std::uint16_t element = 0; element < kCount; ++element) {
    ASSERT_EQ(dictionary_.FindVR(0x0010, element), codes[element % 5]) << element;
  }
}

TEST_F(DicomDictionaryTest, UnknownTagsAreUnknownOrGroupLengthsAndTraced) {
  halvorine::GetTraceLog().Initialize(halvorine::ToWide(temp_.Path("trace.log")), 2);
  EXPECT_EQ(Load("(0008,0000) VR=\"SH\"", dictionary_), kNothingRaised);
  EXPECT_EQ(dictionary_.GetVR(0x0008, 0x0000), "SH");
  EXPECT_EQ(dictionary_.GetVR(0x0010, 0x0000), "UL");
  EXPECT_EQ(dictionary_.GetVR(0xFFFE, 0xE00D), "UN");
  const std::string trace = halvorine::ReadWholeFile(temp_.Path("trace.log"));
  EXPECT_EQ(trace.substr(trace.rfind(" --- ") + 5),
            "The standard DICOM dictionary does not contain the 0xFFFE group and 0xE00D "
            "element.\r\n");
  EXPECT_EQ(trace.find("0x0010 group"), std::string::npos) << trace;
}

TEST(ShippedDictionaryTest, EveryLineIsAnEntryWithTheStandardsVR) {
  const std::set<std::string> codes = {"AE", "AS", "AT", "CS",    "DA",      "DS", "DT", "FD",
                                       "FL", "IS", "LO", "LT",    "OB",      "OT", "OW", "PN",
                                       "SH", "SL", "SQ", "SS",    "ST",      "TM", "UI", "UL",
                                       "UN", "US", "UT", "OW/OB", "US or SS"};
  const std::regex entry(
      R"re(\([0-9A-F]{4},[0-9A-F]{4}\) VR="([^"]+)" VM="[0-9n-]+" Name="[A-Za-z0-9_]+")re");
  std::ifstream file(kShippedFile);
  ASSERT_TRUE(file.is_open()) << kShippedFile;
  std::size_t entries = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("REM ")) continue;
    std::smatch match;
    ASSERT_TRUE(std::regex_match(line, match, entry)) << line;
    EXPECT_EQ(codes.count(match[1]), 1u) << line;
    ++entries;
  }
  EXPECT_GT(entries, 5000u);
  // The tags of the files of FileParserDcmtkTest and of the directories of the reading tests are
  // left to them. Last, tags whose standard VR has no class of the parser, given the code that
  // reads the value whole, and tags left out: items, retired repeating families, private groups.
  const std::tuple<std::uint16_t, std::uint16_t, const char*> tags[] = {
      {0x0002, 0x0016, "AE"},       {0x0008, 0x002A, "DT"},    {0x0008, 0x0030, "TM"},
      {0x0008, 0x0050, "SH"},       {0x0008, 0x0081, "ST"},    {0x0010, 0x0020, "LO"},
      {0x0010, 0x1010, "AS"},       {0x0010, 0x1030, "DS"},    {0x0020, 0x4000, "LT"},
      {0x0018, 0x9810, "US or SS"}, {0x6000, 0x0050, "SS"},    {0x6000, 0x3000, "OW/OB"},
      {0x60FE, 0x3000, "OW/OB"},    {0x7FE0, 0x0010, "OW/OB"}, {0xFFFA, 0xFFFA, "SQ"},
      {0xFFFC, 0xFFFC, "OB"},       {0x0008, 0x0119, "UT"},    {0x0028, 0x3006, "OW"},
      {0x0072, 0x0082, "OB"},       {0x7FE0, 0x0001, "OB"},    {0xFFFE, 0xE000, "UN"},
      {0x5000, 0x0005, "UN"},       {0x6000, 0x0012, "UN"},    {0x7F00, 0x0010, "UN"},
      {0x0020, 0x3100, "UN"},       {0x0009, 0x0010, "UN"}};
  DicomDictionary dictionary;
  EXPECT_EQ(RaisedMessage([&] { dictionary.LoadDictionary(kShippedFile); }), kNothingRaised);
  for (const auto& [group, element, vr] : tags) {
    EXPECT_EQ(dictionary.GetVR(group, element), vr) << std::hex << group << "," << element;
  }
}

// The shipped file is served from the build's table; its bytes parsed as text, with an empty line
// more, give the same entries. A file of the same size with one VR changed is parsed.
TEST(ShippedDictionaryTest, ItsTableHoldsWhatItsTextGives) {
  const ShippedDictionary* const shipped = GetShippedDictionary();
  ASSERT_NE(shipped, nullptr);
  DicomDictionary fromTable;
  ASSERT_EQ(RaisedMessage([&] { fromTable.LoadDictionary(kShippedFile); }), kNothingRaised);
  EXPECT_EQ(fromTable.StandardEntries().data(), shipped->entries.data());

  halvorine::TempFolder temp;
  const std::string text = halvorine::ReadWholeFile(kShippedFile);
  halvorine::WriteWholeFile(temp.Path("longer.txt"), text + "\n");
  DicomDictionary fromText;
  ASSERT_EQ(RaisedMessage([&] { fromText.LoadDictionary(temp.Path("longer.txt")); }),
            kNothingRaised);
  const auto table = fromTable.StandardEntries();
  const auto parsed = fromText.StandardEntries();
  ASSERT_NE(table.data(), parsed.data());
  ASSERT_EQ(table.size(), parsed.size());
  for (std::size_t index = 0; index < table.size(); ++index) {
    ASSERT_EQ(table[index].key, parsed[index].key) << index;
    ASSERT_EQ(fromTable.VRText(table[index].vr), fromText.VRText(parsed[index].vr)) << index;
  }

  std::string changed = text;
  const std::size_t vr = changed.find("VR=\"UL\"");
  ASSERT_NE(vr, std::string::npos);
  changed.replace(vr, 7, "VR=\"UN\"");
  halvorine::WriteWholeFile(temp.Path("changed.txt"), changed);
  DicomDictionary fromChanged;
  ASSERT_EQ(RaisedMessage([&] { fromChanged.LoadDictionary(temp.Path("changed.txt")); }),
            kNothingRaised);
  const std::uint32_t key = fromText.StandardEntries()[0].key;
  EXPECT_EQ(fromText.FindVR(key >> 16, key & 0xFFFF), "UL");
  EXPECT_EQ(fromChanged.FindVR(key >> 16, key & 0xFFFF), "UN");
}

// Any one byte changed, a zero byte added and a block's border crossed change the digest; the
// file's offset stays; a read error gives nothing.
TEST(ShippedDictionaryTest, DigestTellsFilesApart) {
  halvorine::TempFolder temp;
  const std::string path = temp.Path("bytes");
  const auto digest = [&](const std::string& content) {
    halvorine::WriteWholeFile(path, content);
    const halvorine::FileDescriptor file(open(path.c_str(), O_RDONLY));
    return DigestFile(file.get()).value();
  };
  std::set<std::uint64_t> seen;
  for (const std::size_t size : {0, 1, 7, 8, 9, 31, 16384, 16385, 40000}) {
    const std::string content(size, 'a');
    EXPECT_EQ(digest(content).size, size);
    EXPECT_TRUE(seen.insert(digest(content).hash).second) << size;
    for (std::size_t at = 0; at < size; at += 1 + at / 3) {
      std::string changed = content;
      changed[at] = 'b';
      EXPECT_TRUE(seen.insert(digest(changed).hash).second) << size << " " << at;
    }
  }
  const std::uint64_t shorter = digest("ab").hash;
  EXPECT_NE(digest(std::string("ab\0", 3)).hash, shorter);

  const halvorine::FileDescriptor file(open(path.c_str(), O_RDONLY));
  ASSERT_EQ(lseek(file.get(), 5, SEEK_SET), 5);
  EXPECT_EQ(DigestFile(file.get())->size, 3u);
  EXPECT_EQ(lseek(file.get(), 0, SEEK_CUR), 5);
  const halvorine::FileDescriptor folder(open(temp.Path("").c_str(), O_RDONLY | O_DIRECTORY));
  EXPECT_FALSE(DigestFile(folder.get()).has_value());
}

}  // namespace
}  // namespace DicomEngine
