// Files written by FileWriter, read back by dcmtk's dcmdump (tools/setup.sh installs it): every
// element must come back with the tag, VR, length and value that the data set holds once written,
// group lengths and the transfer syntax that the writer adds among them. Two things of
// the system's own stay out: the code "OT", which no standard reader knows, and odd-length binary
// values, which the system writes unpadded and dcmdump pads when it reads them.
#include "engine/encoding/FileWriter.h"

#include <gtest/gtest.h>

#include <memory>

#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "engine/elements/DicomData.h"
#include "support/TextConversion.h"

namespace DicomEngine {
namespace {

TEST(FileWriterDcmtkTest, EveryElementClassInAnExplicitFile) {
  DicomData data(true);
  data.Insert(Binary("OB", 0x0002, 0x0001, {0x00, 0x01}));
  data.Insert(MakeText("CS", 0x0004, 0x1130, ""));
  data.Insert(std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1200, 4, 232u));
  data.Insert(SequenceOf(
      "SQ", 0x0004, 0x1220, 0,
      ItemOf(0, std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1400, 4, 0u),
             std::make_unique<UnsignedIntegerVR>("UL", 0x0004, 0x1420, 4, 296u),
             MakeText("CS", 0x0004, 0x1430, "PATIENT"), MakeText("PN", 0x0010, 0x0010, "Doe^John")),
      ItemOf(0, MakeText("CS", 0x0004, 0x1430, "STUDY"), MakeText("DA", 0x0008, 0x0020, "20240309"),
             SequenceOf("SQ", 0x0008, 0x1110, 0,
                        ItemOf(0, MakeText("UI", 0x0008, 0x1150, "1.2.840.10008.5.1.4.1.1.7"))))));
  data.Insert(MakeText("CS", 0x0008, 0x0060, "OT"));
  data.Insert(MakeText("LO", 0x0008, 0x1030, "Head\\Neck"));
  data.Insert(SequenceOf(
      "SQ", 0x0008, 0x1115, kUndefinedLength,
      ItemOf(kUndefinedLength,
             SequenceOf("SQ", 0x0008, 0x1140, kUndefinedLength,
                        ItemOf(kUndefinedLength, MakeText("UI", 0x0008, 0x1155, "1.2.3.4.5"),
                               Delimiter(kItemDelimiter)),
                        Delimiter(kSequenceDelimiter)),
             MakeText("UI", 0x0020, 0x000E, "1.2.3.4"), Delimiter(kItemDelimiter)),
      Delimiter(kSequenceDelimiter)));
  data.Insert(MakeText("LO", 0x0009, 0x0010, "HALVORINE"));
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
  data.Insert(MakeText("UT", 0x0040, 0xA160, "Some text"));
  data.Insert(SequenceOf("OB", 0x7FE0, 0x0010, kUndefinedLength, Fragment({}),
                         Fragment({0xFF, 0xD8, 0xFF, 0xD9}), Fragment({0x01, 0x02}),
                         Delimiter(kSequenceDelimiter)));

  const halvorine::TempFolder folder;
  FileWriter writer;
  writer.WriteDataSet(data, nullptr, kExplicitLittleEndian, "1.2.840.10008.1.2.4.50");
  writer.WriteToFile(halvorine::ToWide(folder.Path("DICOMDIR")));
  Rows written;
  ListTree(data, "", written);
  EXPECT_EQ(DcmdumpRows(folder.Path("DICOMDIR")), written);
  EXPECT_EQ(written.size(), 51u);
}

}  // namespace
}  // namespace DicomEngine
