#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include "RecordFamilies.h"
#include "ServiceTestSupport.h"
#include "service/ModuleLock.h"

namespace halvorine {
namespace {

using DicomDirPatientTest = ServiceTest;

TEST_F(DicomDirPatientTest, Texts) {
  ExpectTextFamily<IDicomDirPatient>({
      HALVORINE_FIELD(IDicomDirPatient, PatientID),
      HALVORINE_FIELD(IDicomDirPatient, DicomPatName),
      HALVORINE_FIELD(IDicomDirPatient, PatientSex),
  });
}

TEST_F(DicomDirPatientTest, Studies) {
  ExpectArrayFamily<IDicomDirPatient>(
      {&IDicomDirPatient::GetStudies, &IDicomDirPatient::SetStudies});
}

// patient -> study -> series -> image, each child with its back link, held by the root array
// alone.
SafeArrayPtr MakeTree() {
  ComPtr<IDicomDirPatient> patient = Make<IDicomDirPatient>();
  ComPtr<IDicomDirStudy> study = Make<IDicomDirStudy>();
  ComPtr<IDicomDirSeries> series = Make<IDicomDirSeries>();
  ComPtr<IDicomDirImage> image = Make<IDicomDirImage>();
  EXPECT_TRUE(patient && study && series && image);
  image->SetSeries(series.get());
  series->SetImages(ArrayOf({image.get()}).get());
  series->SetStudy(study.get());
  study->SetSeries(ArrayOf({series.get()}).get());
  study->SetPatient(patient.get());
  study->SetStudyInstUID(Text(u"1.2.3").get());
  patient->SetStudies(ArrayOf({study.get()}).get());
  return ArrayOf({patient.get()});
}

TEST_F(DicomDirPatientTest, ReleasingTheRootArrayFreesTheTree) {
  SafeArrayPtr patients = MakeTree();
  EXPECT_EQ(ModuleLock::Count(), 4);
  patients = SafeArrayPtr();
  EXPECT_EQ(ModuleLock::Count(), 0);
}

TEST_F(DicomDirPatientTest, HeldStudyOutlivesItsPatient) {
  SafeArrayPtr patients = MakeTree();
  auto* patient = static_cast<IDicomDirPatient*>(Elements(patients.get()).at(0));
  SafeArrayPtr studies;
  ASSERT_EQ(patient->GetStudies(studies.Receive()), S_OK);
  ComPtr<IDicomDirStudy> study =
      ComPtr<IDicomDirStudy>::Share(static_cast<IDicomDirStudy*>(Elements(studies.get()).at(0)));
  studies = SafeArrayPtr();
  IDicomDirPatient* backLink = nullptr;
  ASSERT_EQ(study->GetPatient(&backLink), S_OK);
  EXPECT_EQ(backLink, patient);

  patients = SafeArrayPtr();
  EXPECT_EQ(ModuleLock::Count(), 3) << "the patient should be gone, its study, series, image not";
  BString uid;
  EXPECT_EQ(study->GetStudyInstUID(uid.Receive()), S_OK);
  EXPECT_EQ(uid.View(), u"1.2.3");
  study = ComPtr<IDicomDirStudy>();
  EXPECT_EQ(ModuleLock::Count(), 0);
}

}  // namespace
}  // namespace halvorine
