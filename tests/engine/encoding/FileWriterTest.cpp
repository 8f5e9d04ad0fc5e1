#include "engine/encoding/FileWriter.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "engine/elements/DicomData.h"
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

std::unique_ptr<VR> Uid(const std::string& uid) { return MakeText("UI", 0x0002, 0x0010, uid); }

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
  data.Append(MakeText("CS", 0x0008, 0x0060, "OT"), true);
  data.Append(SequenceOf("SQ", 0x0008, 0x1115, 0, ItemOf(0)), true);
  FileWriter writer;
  writer.WriteUnsignedShort(0xFFFF);
  OffsetMap offsets;
  writer.WriteDataSet(data, &offsets, kExplicitLittleEndian, "");
  EXPECT_EQ(StreamOf(writer), "FF FF 02 00 10 00 55 49 12 00 " + HexOf(kImplicitUid) +
                                  " 00 08 00 60 00 02 00 00 00 4F 54 "
                                  "08 00 15 11 08 00 00 00 FE FF 00 E0 00 00 00 00");
  EXPECT_EQ(offsets, (OffsetMap{{0x00100002, 2}, {0x00600008, 28}, {0x11150008, 38}}));
}

// The preamble and a stream are read by dcmdump in FileWriterDcmtkTest; an empty stream gives the
// preamble alone, and nothing of an older file stays.
TEST(FileWriterTest, AnEmptyStreamGivesThePreambleAloneOverAnOlderFile) {
  const TempFolder folder;
  halvorine::WriteWholeFile(folder.Path("DICOMDIR"), std::string(5000, 'x'));
  FileWriter().WriteToFile(ToWide(folder.Path("DICOMDIR")));
  EXPECT_EQ(ReadWholeFile(folder.Path("DICOMDIR")), std::string(128, '\0') + "DICM");
}

// A failed write reaches the trace log only; null arguments are refused.
TEST(FileWriterTest, FailuresHaveTheirTexts) {
  EXPECT_PRED3(IsPlaced, RaisedMessage([] { FileWriter().WriteToFile(u""); }),
               "The file name passed to the File Writer is empty.", "FileWriter");
  const TempFolder folder;
  const std::string path = folder.Path("missing/DICOMDIR");
  EXPECT_PRED3(IsPlaced, RaisedMessage([&] { FileWriter().WriteToFile(ToWide(path)); }),
               "The Dicom File Writer failed to create the " + path + " DICOM file.", "FileWriter");
  halvorine::GetTraceLog().Initialize(ToWide(folder.Path("trace.log")), 1);
  FileWriter writer;
  const std::vector<std::uint8_t> block(65536, 0x11);
  writer.WriteBytes(block.data(), static_cast<std::uint32_t>(block.size()));
  writer.WriteToFile(u"/dev/full");
  EXPECT_NE(ReadWholeFile(folder.Path("trace.log"))
                .find(" --- Error writing into the target file. The last error is (in hexa): "
                      "0x1C\r\n"),
            std::string::npos);
  EXPECT_EQ(CreateTargetFile(""), nullptr);
  EXPECT_EQ(WriteBufferToFile(nullptr, nullptr, 4), 0);
  CloseTargetFile(nullptr);
}

}  // namespace
}  // namespace DicomEngine
