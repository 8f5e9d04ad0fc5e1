// Files written by FileWriter, read back by dcmtk's dcmdump: every element must come back with
// the tag, VR, length and value that the data set holds. dcmdump must be installed (tools/setup.sh
// installs dcmtk); without it these tests fail.
//
// dcmdump shows lengths as read from the file, texts without their padding, and names of its
// own: "up" for a UL that holds a file offset, "na" for items and delimiters and "pi" for
// fragments, shown below as "UL" and as no code. The delimiters that it adds "for re-encoding"
// behind explicit-length items are not in the file and are passed over. Two things of the
// system's own stay out: the code "OT", which no standard reader knows, and odd-length binary
// values, which the system writes unpadded and dcmdump pads when it reads them.
#include "engine/encoding/FileWriter.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "engine/elements/DicomData.h"
#include "engine/elements/DoubleVR.h"
#include "engine/elements/IntegerVR.h"
#include "engine/elements/SignedShortVR.h"
#include "engine/elements/UnsignedIntegerVR.h"
#include "engine/elements/UnsignedShortVR.h"
#include "engine/elements/VRAttributeTag.h"
#include "engine/elements/VRBinarySequenceItem.h"
#include "engine/elements/VRSequence.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "support/TextConversion.h"

namespace DicomEngine {
namespace {

using Rows = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

std::unique_ptr<VR> Text(VRCode code, std::uint16_t group, std::uint16_t element,
                         std::string value) {
  const auto length = static_cast<std::uint32_t>(value.size());
  if (code == "UI") {
    return std::make_unique<VRUniqueIdentifier>(code, group, element, length, std::move(value));
  }
  return std::make_unique<VRString>(code, group, element, length, std::move(value));
}

std::unique_ptr<std::uint8_t[]> Block(const Bytes& bytes) {
  auto block = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), block.get());
  return block;
}

std::unique_ptr<VR> Binary(VRCode code, std::uint16_t group, std::uint16_t element, Bytes bytes) {
  const auto length = static_cast<std::uint32_t>(bytes.size());
  return std::make_unique<VRBinary>(code, group, element, length, Block(bytes));
}

std::unique_ptr<VR> Fragment(Bytes bytes) {
  const auto length = static_cast<std::uint32_t>(bytes.size());
  return std::make_unique<VRBinarySequenceItem>(kItemGroup, kItem, length,
                                                bytes.empty() ? nullptr : Block(bytes));
}

std::unique_ptr<VR> Delimiter(std::uint16_t element) {
  return std::make_unique<VRSequenceItem>("", kItemGroup, element, 0);
}

template <typename... Elements>
std::unique_ptr<VR> ItemOf(std::uint32_t length, Elements... elements) {
  auto item = std::make_unique<VRSequenceItem>("", kItemGroup, kItem, length);
  (item->Append(std::move(elements), true), ...);
  return item;
}

template <typename... Items>
std::unique_ptr<VR> SequenceOf(VRCode code, std::uint16_t group, std::uint16_t element,
                               std::uint32_t length, Items... items) {
  auto sequence = std::make_unique<VRSequence>(code, group, element, length);
  (sequence->Append(std::move(items), false), ...);
  return sequence;
}

// A dcmdump line as "<indent>(GGGG,EEEE) VR value #length", or as "<indent>offset=$N" for the
// file offset that dcmdump notes below a directory record; other comments give nothing.
std::string RowOf(const std::string& line) {
  const std::size_t indent = line.find_first_not_of(' ');
  if (line.compare(indent, 10, "#  offset=") == 0)
    return line.substr(0, indent) + line.substr(indent + 3);
  if (line[indent] != '(' || line.find("for re-encod") != std::string::npos) return "";
  std::string tag = line.substr(indent, 11);
  for (char& letter : tag) letter = static_cast<char>(std::toupper(letter));
  std::string code = line.substr(indent + 12, 2);
  if (code == "up") code = "UL";
  if (code == "na" || code == "pi") code.clear();
  const std::size_t hash = line.rfind('#');
  std::string value = line.substr(indent + 15, hash - indent - 15);
  value.erase(value.find_last_not_of(' ') + 1);
  const std::string length = line.substr(hash + 1, line.find(',', hash) - hash - 1);
  return line.substr(0, indent) + tag + (code.empty() ? "" : " " + code) + " " + value + " #" +
         length.substr(length.find_first_not_of(' '));
}

// What dcmdump reads from the file; its warnings, if any, show as rows of their own.
Rows Dump(const std::string& path) {
  const std::string command = "dcmdump +L -Un '" + path + "' 2>&1";
  std::FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  for (int letter; pipe != nullptr && (letter = std::fgetc(pipe)) != EOF;)
    output += static_cast<char>(letter);
  EXPECT_EQ(pipe == nullptr ? -1 : pclose(pipe), 0)
      << command << " failed; dcmtk comes with tools/setup.sh.\n"
      << output;
  Rows rows;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    if (line.find_first_not_of(' ') == std::string::npos) continue;
    const std::string row =
        line.find_first_of("#(") == line.find_first_not_of(' ') ? RowOf(line) : line;
    if (!row.empty()) rows.push_back(row);
  }
  return rows;
}

Rows WriteAndDump(DicomData& data, SyntaxRecord record, const std::string& uid) {
  const halvorine::TempFolder folder;
  FileWriter writer;
  writer.WriteDataSet(data, nullptr, record, uid);
  writer.WriteToFile(halvorine::ToWide(folder.Path("DICOMDIR")));
  return Dump(folder.Path("DICOMDIR"));
}

TEST(FileWriterDcmtkTest, EveryElementClassInAnExplicitFile) {
  DicomData data(true);
  data.Insert(Binary("OB", 0x0002, 0x0001, {0x00, 0x01}));
  data.Insert(Text("CS", 0x0004, 0x1130, ""));
  data.Insert(std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1200, 4, 232u));
  data.Insert(SequenceOf(
      "SQ", 0x0004, 0x1220, 0,
      ItemOf(0, std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, 0u),
             std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1420, 4, 296u),
             Text("CS", 0x0004, 0x1430, "PATIENT"), Text("PN", 0x0010, 0x0010, "Doe^John")),
      ItemOf(0, Text("CS", 0x0004, 0x1430, "STUDY"), Text("DA", 0x0008, 0x0020, "20240309"),
             SequenceOf("SQ", 0x0008, 0x1110, 0,
                        ItemOf(0, Text("UI", 0x0008, 0x1150, "1.2.840.10008.5.1.4.1.1.7"))))));
  data.Insert(Text("CS", 0x0008, 0x0060, "OT"));
  data.Insert(Text("LO", 0x0008, 0x1030, "Head\\Neck"));
  data.Insert(
      SequenceOf("SQ", 0x0008, 0x1115, kUndefinedLength,
                 ItemOf(kUndefinedLength,
                        SequenceOf("SQ", 0x0008, 0x1140, kUndefinedLength,
                                   ItemOf(kUndefinedLength, Text("UI", 0x0008, 0x1155, "1.2.3.4.5"),
                                          Delimiter(kItemDelimiter)),
                                   Delimiter(kSequenceDelimiter)),
                        Text("UI", 0x0020, 0x000E, "1.2.3.4"), Delimiter(kItemDelimiter)),
                 Delimiter(kSequenceDelimiter)));
  data.Insert(Text("LO", 0x0009, 0x0010, "HALVORINE"));
  data.Insert(Binary("UN", 0x0009, 0x1001, {0x01, 0x02}));
  data.Insert(std::make_unique<DoubleVR>("FL", 0x0018, 0x2043, 8, std::vector<double>{1.5, -2}));
  data.Insert(
      std::make_unique<IntegerVR>("SL", 0x0018, 0x6020, 8, std::vector<std::int32_t>{-1, 2}));
  data.Insert(std::make_unique<DoubleVR>("FD", 0x0018, 0x9087, 8, std::vector<double>{0.5}));
  data.Insert(
      std::make_unique<SignedShortVR>("SS", 0x0018, 0x9219, 2, std::vector<std::int16_t>{-5}));
  data.Insert(std::make_unique<VRAttributeTag>(
      "AT", 0x0028, 0x0009, 8, std::vector<AttributeTag>{{0x0018, 0x1063}, {0x7FE0, 0x0010}}));
  data.Insert(std::make_unique<UnsignedShortVR>("US", 0x0028, 0x0010, 2, 64));
  data.Insert(Binary("OW", 0x0028, 0x1201, {0x01, 0x02, 0x03, 0x04}));
  data.Insert(Text("UT", 0x0040, 0xA160, "Some text"));
  data.Insert(SequenceOf("OB", 0x7FE0, 0x0010, kUndefinedLength, Fragment({}),
                         Fragment({0xFF, 0xD8, 0xFF, 0xD9}), Fragment({0x01, 0x02}),
                         Delimiter(kSequenceDelimiter)));

  // The records stand at stream positions 100 and 164; in the file that is 132 bytes later.
  const Rows expected = {
      "(0002,0000) UL 44 #4",
      "(0002,0001) OB 00\\01 #2",
      "(0002,0010) UI [1.2.840.10008.1.2.4.50] #22",
      "(0004,0000) UL 188 #4",
      "(0004,1130) CS (no value available) #0",
      "(0004,1200) UL 232 #4",
      "(0004,1220) SQ (Sequence with explicit length #=2) #156",
      "  (FFFE,E000) \"Directory Record\" PATIENT #=4 #56",
      "  offset=$232",
      "    (0004,1400) UL 0 #4",
      "    (0004,1420) UL 296 #4",
      "    (0004,1430) CS [PATIENT] #8",
      "    (0010,0010) PN [Doe^John] #8",
      "  (FFFE,E000) \"Directory Record\" STUDY #=3 #84",
      "  offset=$296",
      "    (0004,1430) CS [STUDY] #6",
      "    (0008,0020) DA [20240309] #8",
      "    (0008,1110) SQ (Sequence with explicit length #=1) #42",
      "      (FFFE,E000) (Item with explicit length #=1) #34",
      "        (0008,1150) UI [1.2.840.10008.5.1.4.1.1.7] #26",
      "(0008,0000) UL 134 #4",
      "(0008,0060) CS [OT] #2",
      "(0008,1030) LO [Head\\Neck] #10",
      "(0008,1115) SQ (Sequence with undefined length #=1) #u/l",
      "  (FFFE,E000) (Item with undefined length #=2) #u/l",
      "    (0008,1140) SQ (Sequence with undefined length #=1) #u/l",
      "      (FFFE,E000) (Item with undefined length #=1) #u/l",
      "        (0008,1155) UI [1.2.3.4.5] #10",
      "      (FFFE,E00D) (ItemDelimitationItem) #0",
      "    (FFFE,E0DD) (SequenceDelimitationItem) #0",
      "    (0020,000E) UI [1.2.3.4] #8",
      "  (FFFE,E00D) (ItemDelimitationItem) #0",
      "(FFFE,E0DD) (SequenceDelimitationItem) #0",
      "(0009,0000) UL 32 #4",
      "(0009,0010) LO [HALVORINE] #10",
      "(0009,1001) UN 01\\02 #2",
      "(0018,0000) UL 58 #4",
      "(0018,2043) FL 1.5\\-2 #8",
      "(0018,6020) SL -1\\2 #8",
      "(0018,9087) FD 0.5 #8",
      "(0018,9219) SS -5 #2",
      "(0028,0000) UL 42 #4",
      "(0028,0009) AT (0018,1063)\\(7fe0,0010) #8",
      "(0028,0010) US 64 #2",
      "(0028,1201) OW 0201\\0403 #4",
      "(0040,0000) UL 22 #4",
      "(0040,A160) UT [Some text] #10",
      "(7FE0,0000) UL 50 #4",
      "(7FE0,0010) OB (PixelSequence #=3) #u/l",
      "  (FFFE,E000) (no value available) #0",
      "  (FFFE,E000) ff\\d8\\ff\\d9 #4",
      "  (FFFE,E000) 01\\02 #2",
      "(FFFE,E0DD) (SequenceDelimitationItem) #0",
  };
  EXPECT_EQ(WriteAndDump(data, kExplicitLittleEndian, "1.2.840.10008.1.2.4.50"), expected);
}

}  // namespace
}  // namespace DicomEngine
