// Files written by FileWriter, read back by dcmtk's dcmdump (tools/setup.sh installs it): every
// element must come back with the tag, VR, length and value that the data set holds. Two things of
// the system's own stay out: the code "OT", which no standard reader knows, and odd-length binary
// values, which the system writes unpadded and dcmdump pads when it reads them.
#include "engine/encoding/FileWriter.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "engine/EngineTestSupport.h"
#include "engine/elements/DicomData.h"
#include "engine/elements/DoubleVR.h"
#include "engine/elements/IntegerVR.h"
#include "engine/elements/SignedShortVR.h"
#include "engine/elements/UnsignedIntegerVR.h"
#include "engine/elements/UnsignedShortVR.h"
#include "engine/elements/VRAttributeTag.h"
#include "support/TextConversion.h"

namespace DicomEngine {
namespace {

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
      "(0004,1220) SQ #156",
      "  (FFFE,E000) #56",
      "  offset=$232",
      "    (0004,1400) UL 0 #4",
      "    (0004,1420) UL 296 #4",
      "    (0004,1430) CS [PATIENT] #8",
      "    (0010,0010) PN [Doe^John] #8",
      "  (FFFE,E000) #84",
      "  offset=$296",
      "    (0004,1430) CS [STUDY] #6",
      "    (0008,0020) DA [20240309] #8",
      "    (0008,1110) SQ #42",
      "      (FFFE,E000) #34",
      "        (0008,1150) UI [1.2.840.10008.5.1.4.1.1.7] #26",
      "(0008,0000) UL 134 #4",
      "(0008,0060) CS [OT] #2",
      "(0008,1030) LO [Head\\Neck] #10",
      "(0008,1115) SQ #u/l",
      "  (FFFE,E000) #u/l",
      "    (0008,1140) SQ #u/l",
      "      (FFFE,E000) #u/l",
      "        (0008,1155) UI [1.2.3.4.5] #10",
      "      (FFFE,E00D) #0",
      "    (FFFE,E0DD) #0",
      "    (0020,000E) UI [1.2.3.4] #8",
      "  (FFFE,E00D) #0",
      "(FFFE,E0DD) #0",
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
      "(FFFE,E0DD) #0",
  };
  const halvorine::TempFolder folder;
  FileWriter writer;
  writer.WriteDataSet(data, nullptr, kExplicitLittleEndian, "1.2.840.10008.1.2.4.50");
  writer.WriteToFile(halvorine::ToWide(folder.Path("DICOMDIR")));
  EXPECT_EQ(DcmdumpRows(folder.Path("DICOMDIR")), expected);
}

}  // namespace
}  // namespace DicomEngine
