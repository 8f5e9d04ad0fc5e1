#include "DiscTestSupport.h"

#include <algorithm>
#include <filesystem>

#include "TempFolder.h"
#include "reading/ReadingTestSupport.h"
#include "support/TextConversion.h"

namespace halvorine {
BString Bstr(const std::string& narrowText) { return BString::Copy(ToWide(narrowText)); }

std::vector<std::string> Entries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    names.push_back(std::filesystem::relative(entry.path(), folder).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

SafeArrayPtr MakeTree(const TreeShape& shape, const std::string& imageSource, LONG lowerBound) {
  SafeArrayPtr patients = ArrayOfSize(shape.size(), lowerBound);
  for (std::size_t i = 0; i < shape.size(); ++i) {
    const std::string p = std::to_string(i + 1);
    ComPtr<IDicomDirPatient> patient = Make<IDicomDirPatient>();
    patient->SetDicomPatName(Bstr("Doe^" + p).get());
    patient->SetPatientID(Bstr("ID" + p).get());
    patient->SetPatientSex(Bstr("F").get());
    SafeArrayPtr studies = ArrayOfSize(shape[i].size());
    for (std::size_t j = 0; j < shape[i].size(); ++j) {
      const std::string s = std::to_string(j + 1);
      const std::string uid = "1.2.3." + p + "." + s;
      ComPtr<IDicomDirStudy> study = Make<IDicomDirStudy>();
      study->SetStudyInstUID(Bstr(uid).get());
      study->SetStudyID(Bstr("S" + s).get());
      study->SetAccessionNr(Bstr("A" + s).get());
      study->SetStudyDescription(Bstr("Head").get());
      study->SetInstitution(Bstr("Clinic").get());
      study->SetStudyDate(45360.5);  // 9 March 2024, 12:00:00
      SafeArrayPtr series = ArrayOfSize(shape[i][j].size());
      for (std::size_t k = 0; k < shape[i][j].size(); ++k) {
        const std::string seriesUid = uid + "." + std::to_string(k + 1);
        ComPtr<IDicomDirSeries> one = Make<IDicomDirSeries>();
        one->SetModality(Bstr("OT").get());
        one->SetSeriesInstUID(Bstr(seriesUid).get());
        one->SetSeriesNumber(static_cast<SHORT>(k + 1));
        SafeArrayPtr images = ArrayOfSize(shape[i][j][k]);
        for (int l = 0; l < shape[i][j][k]; ++l) {
          ComPtr<IDicomDirImage> image = Make<IDicomDirImage>();
          image->SetSOPClassUID(Bstr("1.2.840.10008.5.1.4.1.1.7").get());
          image->SetSOPInstanceUID(Bstr(seriesUid + "." + std::to_string(l + 1)).get());
          image->SetTransferSyntaxUID(Bstr("1.2.840.10008.1.2.1").get());
          image->SetInstanceNumber(l + 1);
          image->SetImageFilename(Bstr(imageSource).get());
          Put(images, l, image.get());
        }
        if (shape[i][j][k] > 0) one->SetImages(images.get());
        Put(series, k, one.get());
      }
      study->SetSeries(series.get());
      Put(studies, j, study.get());
    }
    patient->SetStudies(studies.get());
    Put(patients, lowerBound + static_cast<LONG>(i), patient.get());
  }
  return patients;
}

std::string ToolOutputOfADisc(const std::string& tool) {
  const TempFolder folder;
  WriteWholeFile(folder.Path("image"), "image");
  BString output;
  EXPECT_EQ(Make<IDicomDirImpl>()->CreateDicomDir(
                Bstr(folder.Path()).get(), Bstr("Disc").get(),
                MakeTree({{{2, 0}, {}}, {{1}}}, folder.Path("image")).get(), output.Receive(),
                VARIANT_FALSE, nullptr),
            S_OK);
  // Findings may make the tool exit non-zero; only one that can't be run fails the test.
  return testing::RunCommand(tool + " '" + folder.Path("Disc/DICOMDIR") +
                             "' 2>&1 || test $? != 127");
}

}  // namespace halvorine
