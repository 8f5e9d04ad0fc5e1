#include "DiscTestSupport.h"

#include "TempFolder.h"
#include "reading/ReadingTestSupport.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

template <class T>
SafeArrayPtr ArrayFrom(const std::vector<ComPtr<T>>& objects, LONG lower = 0) {
  SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, lower, static_cast<ULONG>(objects.size())));
  for (LONG i = 0; i < static_cast<LONG>(objects.size()); ++i) {
    LONG index = lower + i;
    EXPECT_EQ(SafeArrayPutElement(array.get(), &index, objects[std::size_t(i)].get()), S_OK);
  }
  return array;
}

}  // namespace

BString Bstr(const std::string& narrowText) { return BString::Copy(ToWide(narrowText)); }

SafeArrayPtr MakeTree(const TreeShape& shape, const std::string& imageSource, LONG lowerBound) {
  std::vector<ComPtr<IDicomDirPatient>> patients;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    const std::string p = std::to_string(i + 1);
    auto& patient = patients.emplace_back(HALVORINE_NEW(DicomDirPatient));
    patient->SetDicomPatName(Bstr("Doe^" + p).get());
    patient->SetPatientID(Bstr("ID" + p).get());
    patient->SetPatientSex(Bstr("F").get());
    std::vector<ComPtr<IDicomDirStudy>> studies;
    for (std::size_t j = 0; j < shape[i].size(); ++j) {
      const std::string s = std::to_string(j + 1);
      const std::string uid = "1.2.3." + p + "." + s;
      auto& study = studies.emplace_back(HALVORINE_NEW(DicomDirStudy));
      study->SetStudyInstUID(Bstr(uid).get());
      study->SetStudyID(Bstr("S" + s).get());
      study->SetAccessionNr(Bstr("A" + s).get());
      study->SetStudyDescription(Bstr("Head").get());
      study->SetInstitution(Bstr("Clinic").get());
      study->SetStudyDate(45360.5);  // 9 March 2024, 12:00:00
      std::vector<ComPtr<IDicomDirSeries>> series;
      for (std::size_t k = 0; k < shape[i][j].size(); ++k) {
        const std::string seriesUid = uid + "." + std::to_string(k + 1);
        auto& one = series.emplace_back(HALVORINE_NEW(DicomDirSeries));
        one->SetModality(Bstr("OT").get());
        one->SetSeriesInstUID(Bstr(seriesUid).get());
        one->SetSeriesNumber(static_cast<SHORT>(k + 1));
        std::vector<ComPtr<IDicomDirImage>> images;
        for (int l = 1; l <= shape[i][j][k]; ++l) {
          auto& image = images.emplace_back(HALVORINE_NEW(DicomDirImage));
          image->SetSOPClassUID(Bstr("1.2.840.10008.5.1.4.1.1.7").get());
          image->SetSOPInstanceUID(Bstr(seriesUid + "." + std::to_string(l)).get());
          image->SetTransferSyntaxUID(Bstr("1.2.840.10008.1.2.1").get());
          image->SetInstanceNumber(l);
          image->SetImageFilename(Bstr(imageSource).get());
        }
        if (!images.empty()) one->SetImages(ArrayFrom(images).get());
      }
      study->SetSeries(ArrayFrom(series).get());
    }
    patient->SetStudies(ArrayFrom(studies).get());
  }
  return ArrayFrom(patients, lowerBound);
}

std::string ToolOutputOfADisc(const std::string& tool) {
  const TempFolder folder;
  WriteWholeFile(folder.Path("image"), "image");
  BString output;
  EXPECT_EQ(HALVORINE_NEW(DicomDirImpl)
                ->CreateDicomDir(Bstr(folder.Path()).get(), Bstr("Disc").get(),
                                 MakeTree({{{2, 0}, {}}, {{1}}}, folder.Path("image")).get(),
                                 output.Receive(), VARIANT_FALSE, nullptr),
            S_OK);
  // Findings may make the tool exit non-zero; only one that can't be run fails the test.
  return testing::RunCommand(tool + " '" + folder.Path("Disc/DICOMDIR") +
                             "' 2>&1 || test $? != 127");
}

std::string LittleEndian(std::uint32_t value, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i));
  return bytes;
}

std::string Encoded(std::uint16_t group, std::uint16_t element, const std::string& code,
                    const std::string& value) {
  const auto length = static_cast<std::uint32_t>(value.size());
  return LittleEndian(group, 2) + LittleEndian(element, 2) + code +
         (code == "OB" || code == "SQ" ? std::string(2, '\0') + LittleEndian(length, 4)
                                       : LittleEndian(length, 2)) +
         value;
}

std::string BytesOf(const DicomEngine::BufferWriter& writer) {
  return std::string(reinterpret_cast<const char*>(writer.GetBuffer()), writer.GetCursor());
}

}  // namespace halvorine
