#include "writing/RecordBuilder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "DiscTestSupport.h"
#include "RaisedMessage.h"
#include "engine/encoding/HexText.h"
#include "writing/OffsetLinker.h"

namespace halvorine {
namespace {

using Record = std::unique_ptr<DicomEngine::VRSequenceItem>;

Record Patient() {
  auto patient = Make<IDicomDirPatient>();
  patient->SetDicomPatName(Bstr("Doe^Jane").get());
  patient->SetPatientID(Bstr("ID7").get());
  patient->SetPatientSex(Bstr("F").get());
  return BuildPatientRecord(*patient.get());
}

Record Study(DATE date) {
  auto study = Make<IDicomDirStudy>();
  study->SetStudyInstUID(Bstr("1.2.3").get());
  study->SetStudyID(Bstr("S1").get());
  study->SetInstitution(Bstr("Clinic").get());
  study->SetStudyDate(date);
  return BuildStudyRecord(*study.get());
}

Record Series() {
  auto series = Make<IDicomDirSeries>();
  series->SetModality(Bstr("CT").get());
  series->SetSeriesInstUID(Bstr("1.2").get());
  series->SetSeriesNumber(-1);
  return BuildSeriesRecord(*series.get());
}

// The number's low 32 bits, taken as signed, are -2147483648: more than nine characters, whole.
Record Image() {
  auto image = Make<IDicomDirImage>();
  image->SetSOPClassUID(Bstr("1.2.840.10008.5.1.4.1.1.7").get());
  image->SetSOPInstanceUID(Bstr("1.2.3.4").get());
  image->SetTransferSyntaxUID(Bstr("1.2.840.10008.1.2.1").get());
  image->SetInstanceNumber(0x180000000);
  image->SetImageFilename(Bstr("/ignored").get());
  return BuildImageRecord(*image.get(), "/out/Disc/DICOM/PA0/ST0/SE0/IM0", "/out/Disc");
}

using RecordBuilderTest = ServiceTest;

// The record as it goes into the file (WriteRecord): the item's header, the record's head, then
// the elements. The study's null texts give empty elements.
TEST_F(RecordBuilderTest, EveryRecordToTheByte) {
  const std::string study =
      Encoded(0x0008, 0x0050, "SH", "") + Encoded(0x0008, 0x0080, "LO", "Clinic") +
      Encoded(0x0008, 0x1030, "LO", "") + Encoded(0x0020, 0x000D, "UI", "1.2.3") +
      Encoded(0x0020, 0x0010, "SH", "S1");
  const struct {
    std::function<Record()> build;
    std::string type;
    std::string elements;
  } cases[] = {
      {Patient, "PATIENT ",
       Encoded(0x0010, 0x0010, "PN", "Doe^Jane") + Encoded(0x0010, 0x0020, "LO", "ID7 ") +
           Encoded(0x0010, 0x0040, "CS", "F ")},
      {[] { return Study(0.0); }, "STUDY ", study},
      {[] { return Study(45360.5); }, "STUDY ",  // 9 March 2024, 12:00
       Encoded(0x0008, 0x0020, "DA", "20240309") + Encoded(0x0008, 0x0030, "TM", "120000") + study},
      {Series, "SERIES",
       Encoded(0x0008, 0x0060, "CS", "CT") + Encoded(0x0020, 0x000E, "UI", "1.2") +
           Encoded(0x0020, 0x0011, "IS", "-1")},
      {Image, "IMAGE ",
       Encoded(0x0004, 0x1500, "UI", "DICOM\\PA0\\ST0\\SE0\\IM0") +
           Encoded(0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.1.1.7") +
           Encoded(0x0004, 0x1511, "UI", "1.2.3.4") +
           Encoded(0x0004, 0x1512, "UI", "1.2.840.10008.1.2.1") +
           Encoded(0x0020, 0x0013, "IS", "-2147483648 ")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    DicomEngine::BufferWriter writer("1.2.840.10008.1.2.1");
    DicomEngine::OffsetMap recordMap;
    WriteRecord(c.build().get(), writer, recordMap);
    const std::string content = Encoded(0x0004, 0x1400, "UL", LittleEndian(0, 4)) +
                                Encoded(0x0004, 0x1410, "US", LittleEndian(0xFFFF, 2)) +
                                Encoded(0x0004, 0x1420, "UL", LittleEndian(0, 4)) +
                                Encoded(0x0004, 0x1430, "CS", c.type) + c.elements;
    EXPECT_EQ(DicomEngine::StreamOf(writer),
              DicomEngine::HexOf(ElementHeader(0xFFFE, 0xE000, "", content.size()) + content));
  }
}

TEST(RecordBuilderFileIdTest, ThePathBehindTheOutputFolderWithBackslashes) {
  EXPECT_EQ(MakeReferencedFileId("/out/Disc/DICOM/PA0/IM0", "/out/Disc/"), "DICOM\\PA0\\IM0");
  EXPECT_EQ(MakeReferencedFileId("/out/Disc/DICOM/PA1/IM4", "/elsewhere"),
            "\\out\\Disc\\DICOM\\PA1\\IM4");
}

// Only GetPatientID fails; the record objects of the service never do.
class FailingPatient final : public IDicomDirPatient {
 public:
  HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG AddRef() override { return 1; }
  ULONG Release() override { return 1; }
  HRESULT GetPatientID(BSTR*) override { return E_OUTOFMEMORY; }
  HRESULT SetPatientID(BSTR) override { return S_OK; }
  HRESULT GetDicomPatName(BSTR* name) override { return *name = nullptr, S_OK; }
  HRESULT SetDicomPatName(BSTR) override { return S_OK; }
  HRESULT GetPatientSex(BSTR* sex) override { return *sex = nullptr, S_OK; }
  HRESULT SetPatientSex(BSTR) override { return S_OK; }
  HRESULT GetStudies(SAFEARRAY** studies) override { return *studies = nullptr, S_OK; }
  HRESULT SetStudies(SAFEARRAY*) override { return S_OK; }
};

TEST(RecordBuilderFailureTest, AFailingGetterRaisesItsStatus) {
  FailingPatient patient;
  const std::string message = RaisedMessage([&] { BuildPatientRecord(patient); });
  EXPECT_TRUE(IsPlaced(message, "COM method failed. HRESULT=8007000e,", "DicomDirImpl")) << message;
}

}  // namespace
}  // namespace halvorine
