#include "engine/encoding/FileWriter.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "engine/elements/DicomData.h"
#include "engine/elements/VRSequence.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "engine/encoding/HexText.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"

namespace DicomEngine {
namespace {

using halvorine::IsPlaced;
using halvorine::RaisedMessage;
using halvorine::ReadWholeFile;
using halvorine::TempFolder;
using halvorine::ToWide;

constexpr char kImplicitUid[] = "1.2.840.10008.1.2";
constexpr char kExplicitUid[] = "1.2.840.10008.1.2.1";

// The process's trace log, at level 4, in a folder of this test program's own.
const std::string& TraceFile() {
  static const TempFolder folder;
  static const std::string path = [] {
    halvorine::GetTraceLog().Initialize(ToWide(folder.Path("trace.log")), 4);
    return folder.Path("trace.log");
  }();
  return path;
}

std::size_t TraceEnd() { return ReadWholeFile(TraceFile()).size(); }

// The texts of the lines traced behind byte start, one a line.
std::string TracedSince(std::size_t start) {
  const std::string log = ReadWholeFile(TraceFile());
  std::string texts;
  for (std::size_t at = log.find(" --- ", start); at != std::string::npos;
       at = log.find(" --- ", at + 1)) {
    texts += log.substr(at + 5, log.find("\r\n", at) - at - 5) + "\n";
  }
  return texts;
}

std::unique_ptr<VR> Uid(const std::string& uid) {
  return std::make_unique<VRUniqueIdentifier>("UI", 0x0002, 0x0010,
                                              static_cast<std::uint32_t>(uid.size()), uid);
}

std::unique_ptr<VR> Modality() { return std::make_unique<VRString>("CS", 0x0008, 0x0060, 2, "OT"); }

TEST(FileWriterTest, WriteDataSetTakesItsSyntaxFromTheTransferSyntaxUid) {
  const struct {
    const char* present;  // null: the data set has no (0002,0010)
    SyntaxRecord record;
    const char* uid;
    const char* written;
    SyntaxRecord syntax;
  } cases[] = {
      {nullptr, kImplicitLittleEndian, "", kImplicitUid, kImplicitLittleEndian},
      {nullptr, SyntaxRecord(2, 2), "", "1.2.840.10008.1.2.2", SyntaxRecord(2, 2)},
      {nullptr, kImplicitLittleEndian, "1.2.840.10008.1.2.4.50", "1.2.840.10008.1.2.4.50",
       kExplicitLittleEndian},
      {kImplicitUid, kImplicitLittleEndian, kExplicitUid, kExplicitUid, kExplicitLittleEndian},
      {kImplicitUid, kExplicitLittleEndian, "", kImplicitUid, kImplicitLittleEndian},
      {"1.2.3", kImplicitLittleEndian, "", "1.2.3", kExplicitLittleEndian},
  };
  for (const auto& test : cases) {
    DicomData data(true);
    if (test.present != nullptr) data.Insert(Uid(test.present));
    FileWriter writer;
    writer.WriteDataSet(data, nullptr, test.record, test.uid);
    const auto* element = dynamic_cast<VRUniqueIdentifier*>(data.Find(0x0002, 0x0010));
    ASSERT_NE(element, nullptr) << test.written;
    EXPECT_EQ(element->GetValue(), test.written);
    EXPECT_EQ(writer.GetSyntax(), test.syntax) << test.written;
  }
}

TEST(FileWriterTest, AnImplicitDataSetGoesBehindTheStreamWithItsMetaGroupExplicit) {
  DicomData data(false);
  data.Append(Uid(kImplicitUid), true);
  data.Append(Modality(), true);
  auto sequence = std::make_unique<VRSequence>("SQ", 0x0008, 0x1115, 0);
  sequence->Append(std::make_unique<VRSequenceItem>("", kItemGroup, kItem, 0), false);
  data.Append(std::move(sequence), true);
  FileWriter writer;
  writer.WriteUnsignedShort(0xFFFF);
  OffsetMap offsets;
  writer.WriteDataSet(data, &offsets, kExplicitLittleEndian, "");
  EXPECT_EQ(StreamOf(writer), "FF FF 02 00 10 00 55 49 12 00 " + HexOf(kImplicitUid) +
                                  " 00 08 00 60 00 02 00 00 00 4F 54 "
                                  "08 00 15 11 08 00 00 00 FE FF 00 E0 00 00 00 00");
  EXPECT_EQ(offsets, (OffsetMap{{0x00100002, 2}, {0x00600008, 28}, {0x11150008, 38}}));
}

TEST(FileWriterTest, TheFileIsThePreambleAndTheStreamAndNothingOfAnOlderFile) {
  const TempFolder folder;
  const std::string path = folder.Path("DICOMDIR");
  halvorine::WriteWholeFile(path, std::string(5000, 'x'));
  DicomData data(true);
  data.Insert(Modality());
  FileWriter writer;
  writer.WriteDataSet(data, nullptr, kExplicitLittleEndian, "");
  writer.WriteToFile(ToWide(path));
  const std::string file = ReadWholeFile(path);
  EXPECT_EQ(file.substr(0, 132), std::string(128, '\0') + "DICM");
  EXPECT_EQ(HexOf(file.substr(132)), StreamOf(writer));
}

TEST(FileWriterTest, AnEmptyStreamGivesThePreambleAloneAndATraceLine) {
  const TempFolder folder;
  const std::size_t start = TraceEnd();
  FileWriter().WriteToFile(ToWide(folder.Path("empty")));
  EXPECT_EQ(ReadWholeFile(folder.Path("empty")), std::string(128, '\0') + "DICM");
  EXPECT_EQ(TracedSince(start), "The passed in data buffer is NULL.\n");
}

TEST(FileWriterTest, NoNameOrNoFileIsAFailure) {
  EXPECT_PRED3(IsPlaced, RaisedMessage([] { FileWriter().WriteToFile(u""); }),
               "The file name passed to the File Writer is empty.", "FileWriter");
  const TempFolder folder;
  const std::string path = folder.Path("missing/DICOMDIR");
  const std::size_t start = TraceEnd();
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { FileWriter().WriteToFile(ToWide(path)); }),
               "The Dicom File Writer failed to create the " + path + " DICOM file.", "FileWriter");
  EXPECT_EQ(TracedSince(start),
            "Cannot create the " + path + " target file. The last error is (in hexa): 0x2\n");
}

TEST(FileWriterTest, FailedWritesAndNullArgumentsReachTheTraceLogOnly) {
  FileWriter writer;
  const std::vector<std::uint8_t> block(65536, 0x11);
  writer.WriteBytes(block.data(), static_cast<std::uint32_t>(block.size()));
  const std::size_t start = TraceEnd();
  writer.WriteToFile(u"/dev/full");
  EXPECT_EQ(CreateTargetFile(""), nullptr);
  EXPECT_EQ(WriteBufferToFile(nullptr, nullptr, 4), 0);
  CloseTargetFile(nullptr);
  const std::string full =
      "Error writing into the target file. The last error is (in hexa): 0x1C\n";
  EXPECT_EQ(TracedSince(start), full + full +
                                    "The file name is empty.\n"
                                    "The passed in destination file handle is NULL.\n"
                                    "The passed in data buffer is NULL.\n");
}

}  // namespace
}  // namespace DicomEngine
