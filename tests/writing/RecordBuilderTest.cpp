#include "writing/RecordBuilder.h"

#include "writing/OffsetLinker.h"

#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <string>

#include "DiscTestSupport.h"
#include "RaisedMessage.h"
#include "engine/encoding/HexText.h"

namespace halvorine {
namespace {

using Record = std::unique_ptr<DicomEngine::VRSequenceItem>;

// The record as it goes into the file (WriteRecord): the item's header, the recordHead, then the
// elements.
std::string RecordBytes(const std::string& type, const std::string& elements) {
  const std::string content = Encoded(0x0004, 0x1400, "UL", LittleEndian(0, 4)) +
                              Encoded(0x0004, 0x1410, "US", LittleEndian(0xFFFF, 2)) +
                              Encoded(0x0004, 0x1420, "UL", LittleEndian(0, 4)) +
                              Encoded(0x0004, 0x1430, "CS", type) + elements;
  return "\xFE\xFF" + std::string("\x00\xE0", 2) +
         LittleEndian(static_cast<std::uint32_t>(content.size()), 4) + content;
}

Record Patient(const char16_t* name, const char16_t* id, const char16_t* sex) {
  auto patient = NewPatient();
  if (name != nullptr) patient->SetDicomPatName(Bstr(name).get());
  if (id != nullptr) patient->SetPatientID(Bstr(id).get());
  if (sex != nullptr) patient->SetPatientSex(Bstr(sex).get());
  return BuildPatientRecord(*patient.get());
}

Record Study(DATE date) {
  auto study = NewStudy();
  study->SetStudyInstUID(Bstr(u"1.2.3").get());
  study->SetStudyID(Bstr(u"S1").get());
  study->SetInstitution(Bstr(u"Clinic").get());
  study->SetStudyDate(date);
  return BuildStudyRecord(*study.get());
}

Record Series(SHORT number) {
  auto series = NewSeries();
  series->SetModality(Bstr(u"CT").get());
  series->SetSeriesInstUID(Bstr(u"1.2").get());
  series->SetSeriesNumber(number);
  return BuildSeriesRecord(*series.get());
}

Record Image(LONGLONG number) {
  auto image = NewImage();
  image->SetSOPClassUID(Bstr(u"1.2.840.10008.5.1.4.1.1.7").get());
  image->SetSOPInstanceUID(Bstr(u"1.2.3.4").get());
  image->SetTransferSyntaxUID(Bstr(u"1.2.840.10008.1.2.1").get());
  image->SetInstanceNumber(number);
  image->SetImageFilename(Bstr(u"/ignored").get());
  return BuildImageRecord(*image.get(), "/out/Disc/DICOM/PA0/ST0/SE0/IM0", "/out/Disc");
}

std::string ImageElements(const std::string& number) {
  return Encoded(0x0004, 0x1500, "UI", std::string("DICOM\\PA0\\ST0\\SE0\\IM0\0", 22)) +
         Encoded(0x0004, 0x1510, "UI", std::string("1.2.840.10008.5.1.4.1.1.7\0", 26)) +
         Encoded(0x0004, 0x1511, "UI", std::string("1.2.3.4\0", 8)) +
         Encoded(0x0004, 0x1512, "UI", std::string("1.2.840.10008.1.2.1\0", 20)) +
         Encoded(0x0020, 0x0013, "IS", number);
}

struct RecordCase {
  const char* name;
  std::function<Record()> build;
  std::string type;
  std::string elements;
};

using RecordBuilderTest = ObjectsReleasedTest;

TEST_F(RecordBuilderTest, EveryRecordToTheByte) {
  const std::string study =
      Encoded(0x0008, 0x0050, "SH", "") + Encoded(0x0008, 0x0080, "LO", "Clinic") +
      Encoded(0x0008, 0x1030, "LO", "") + Encoded(0x0020, 0x000D, "UI", std::string("1.2.3\0", 6)) +
      Encoded(0x0020, 0x0010, "SH", "S1");
  const RecordCase cases[] = {
      {"patient with nothing set", [] { return Patient(nullptr, nullptr, nullptr); }, "PATIENT ",
       Encoded(0x0010, 0x0010, "PN", "") + Encoded(0x0010, 0x0020, "LO", "") +
           Encoded(0x0010, 0x0040, "CS", "")},
      {"patient", [] { return Patient(u"Doe^Jane", u"ID7", u"F"); }, "PATIENT ",
       Encoded(0x0010, 0x0010, "PN", "Doe^Jane") + Encoded(0x0010, 0x0020, "LO", "ID7 ") +
           Encoded(0x0010, 0x0040, "CS", "F ")},
      {"study without a date", [] { return Study(0.0); }, "STUDY ", study},
      {"study of 9 March 2024, 12:00", [] { return Study(45360.5); }, "STUDY ",
       Encoded(0x0008, 0x0020, "DA", "20240309") + Encoded(0x0008, 0x0030, "TM", "120000") + study},
      {"series -1", [] { return Series(-1); }, "SERIES",
       Encoded(0x0008, 0x0060, "CS", "CT") +
           Encoded(0x0020, 0x000E, "UI", std::string("1.2\0", 4)) +
           Encoded(0x0020, 0x0011, "IS", "-1")},
      {"series 7", [] { return Series(7); }, "SERIES",
       Encoded(0x0008, 0x0060, "CS", "CT") +
           Encoded(0x0020, 0x000E, "UI", std::string("1.2\0", 4)) +
           Encoded(0x0020, 0x0011, "IS", "7 ")},
      {"image: the low 32 bits, taken as signed", [] { return Image(0x1FFFFFFFF); }, "IMAGE ",
       ImageElements("-1")},
      {"image: a number beyond nine characters, whole", [] { return Image(-2147483648LL); },
       "IMAGE ", ImageElements("-2147483648 ")},
  };
  for (const RecordCase& c : cases) {
    SCOPED_TRACE(c.name);
    DicomEngine::BufferWriter writer("1.2.840.10008.1.2.1");
    DicomEngine::OffsetMap recordMap;
    WriteRecord(c.build().get(), writer, recordMap);
    EXPECT_EQ(DicomEngine::HexOf(BytesOf(writer)),
              DicomEngine::HexOf(RecordBytes(c.type, c.elements)));
  }
}

TEST(RecordBuilderFileIdTest, ThePathBehindTheOutputFolderWithBackslashes) {
  const struct {
    const char* target;
    const char* folder;
    const char* fileId;
  } cases[] = {
      {"/out/Disc/DICOM/PA0/ST0/SE0/IM0", "/out/Disc", "DICOM\\PA0\\ST0\\SE0\\IM0"},
      {"/out/Disc/DICOM/PA0/ST0/SE0/IM0", "/out/Disc/", "DICOM\\PA0\\ST0\\SE0\\IM0"},
      {"/out/Disc/DICOM/PA1/ST2/SE3/IM4", "/elsewhere", "\\out\\Disc\\DICOM\\PA1\\ST2\\SE3\\IM4"},
  };
  for (const auto& c : cases) EXPECT_EQ(MakeReferencedFileId(c.target, c.folder), c.fileId);
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
  EXPECT_TRUE(std::regex_match(
      message,
      std::regex("COM method failed\\. HRESULT=8007000e, File=DicomDirImpl, Line=[1-9][0-9]*")))
      << message;
}

}  // namespace
}  // namespace halvorine
