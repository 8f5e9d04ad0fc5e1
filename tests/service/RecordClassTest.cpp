#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "RecordFamilies.h"
#include "ServiceTestSupport.h"
#include "service/ModuleLock.h"

namespace halvorine {
namespace {

using RecordClassTest = ServiceTest;
using I = IDicomDirImage;

TEST_F(RecordClassTest, ImageTexts) {
  ExpectTextFamily<I>({
      HALVORINE_FIELD(I, SOPInstanceUID),
      HALVORINE_FIELD(I, SOPClassUID),
      HALVORINE_FIELD(I, ImageFilename),
      HALVORINE_FIELD(I, TransferSyntaxUID),
      HALVORINE_FIELD(I, ImageType),
      HALVORINE_FIELD(I, PhotometricInterpretation),
      HALVORINE_FIELD(I, LossyImageCompression),
      HALVORINE_FIELD(I, ImagePositionPatient),
      HALVORINE_FIELD(I, ImageOrientationPatient),
      HALVORINE_FIELD(I, PresentationIntentType),
      HALVORINE_FIELD(I, ConvolutionKernel),
      HALVORINE_FIELD(I, Manufacturer),
      HALVORINE_FIELD(I, RescaleType),
      HALVORINE_FIELD(I, ContrastBolusAgent),
      HALVORINE_FIELD(I, ShutterShape),
      HALVORINE_FIELD(I, VerticesOfPolygonalShutter),
  });
}

TEST_F(RecordClassTest, ImageNumbers) {
  ExpectValueFamily<I, LONGLONG>({HALVORINE_VALUE_FIELD(I, InstanceNumber, 0)});
  ExpectValueFamily<I, SHORT>({
      HALVORINE_VALUE_FIELD(I, ImageRows, 0),
      HALVORINE_VALUE_FIELD(I, ImageColumns, 0),
      HALVORINE_VALUE_FIELD(I, NumberOfFrames, 0),
      HALVORINE_VALUE_FIELD(I, FrameIdx, 0),
      HALVORINE_VALUE_FIELD(I, SamplesPerPixel, 0),
      HALVORINE_VALUE_FIELD(I, PlanarConfiguration, 0),
      HALVORINE_VALUE_FIELD(I, BitsAllocated, 0),
      HALVORINE_VALUE_FIELD(I, BitsStored, 0),
      HALVORINE_VALUE_FIELD(I, HighBit, 0),
      HALVORINE_VALUE_FIELD(I, PixelRepresentation, 0),
      HALVORINE_VALUE_FIELD(I, ShutterLeftVerticalEdge, 0),
      HALVORINE_VALUE_FIELD(I, ShutterRightVerticalEdge, 0),
      HALVORINE_VALUE_FIELD(I, ShutterUpperHorizontalEdge, 0),
      HALVORINE_VALUE_FIELD(I, ShutterLowerHorizontalEdge, 0),
      HALVORINE_VALUE_FIELD(I, RadiusOfCircularShutter, 0),
  });
  ExpectValueFamily<I, LONG>({
      HALVORINE_VALUE_FIELD(I, WindowCenter, 0),
      HALVORINE_VALUE_FIELD(I, WindowWidth, 0),
      HALVORINE_VALUE_FIELD(I, ShutterPresentationValue, 0),
  });
}

TEST_F(RecordClassTest, ImageDoublesAndDates) {
  ExpectValueFamily<I, double>({
      HALVORINE_VALUE_FIELD(I, ImageAcquisitionDateTime, 0.0),
      HALVORINE_VALUE_FIELD(I, ImagerPixelSpacing, 0.0),
      HALVORINE_VALUE_FIELD(I, LossyImageCompressionRatio, 0.0),
      HALVORINE_VALUE_FIELD(I, SliceThickness, 0.0),
      HALVORINE_VALUE_FIELD(I, SpacingBetweenSlices, 0.0),
      HALVORINE_VALUE_FIELD(I, SliceLocation, 0.0),
      HALVORINE_VALUE_FIELD(I, RescaleIntercept, 0.0),
      HALVORINE_VALUE_FIELD(I, RescaleSlope, 1.0),
  });
}

TEST_F(RecordClassTest, ImageBooleans) {
  ExpectValueFamily<I, VARIANT_BOOL>({
      HALVORINE_VALUE_FIELD(I, PrivateFileCopy, VARIANT_FALSE),
      HALVORINE_VALUE_FIELD(I, DicomDir, VARIANT_TRUE),
  });
  ComPtr<I> image = Make<I>();
  ASSERT_TRUE(image);
  VARIANT_BOOL dicomDir = 0;
  image->GetDicomDir(&dicomDir);
  EXPECT_EQ(static_cast<std::uint16_t>(dicomDir), 0xFFFF);
}

TEST_F(RecordClassTest, ImagePairs) {
  ExpectPairFamily<I, double>({
      HALVORINE_FIELD(I, PixelSpacing),
      HALVORINE_FIELD(I, PixelAspectRatio),
  });
  ExpectPairFamily<I, SHORT>({HALVORINE_FIELD(I, CenterOfCircularShutter)});
}

TEST_F(RecordClassTest, ImageIsTaggedIsFalseForAnyHandle) {
  ComPtr<I> image = Make<I>();
  ASSERT_TRUE(image);
  int someWindow = 0;
  for (void* handle : {static_cast<void*>(nullptr), static_cast<void*>(&someWindow),
                       reinterpret_cast<void*>(~std::uintptr_t{0})}) {
    VARIANT_BOOL tagged = VARIANT_TRUE;
    EXPECT_EQ(image->IsTagged(handle, &tagged), S_OK);
    EXPECT_EQ(tagged, VARIANT_FALSE);
  }
  EXPECT_EQ(image->IsTagged(nullptr, nullptr), E_POINTER);
}

TEST_F(RecordClassTest, PatientTexts) {
  ExpectTextFamily<IDicomDirPatient>({
      HALVORINE_FIELD(IDicomDirPatient, PatientID),
      HALVORINE_FIELD(IDicomDirPatient, DicomPatName),
      HALVORINE_FIELD(IDicomDirPatient, PatientSex),
  });
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

TEST_F(RecordClassTest, PatientReleasingTheRootArrayFreesTheTree) {
  SafeArrayPtr patients = MakeTree();
  EXPECT_EQ(ModuleLock::Count(), 4);
  patients = SafeArrayPtr();
  EXPECT_EQ(ModuleLock::Count(), 0);
}

TEST_F(RecordClassTest, PatientHeldStudyOutlivesItsPatient) {
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

TEST_F(RecordClassTest, SeriesTexts) {
  ExpectTextFamily<IDicomDirSeries>({
      HALVORINE_FIELD(IDicomDirSeries, SeriesInstUID),
      HALVORINE_FIELD(IDicomDirSeries, Modality),
      HALVORINE_FIELD(IDicomDirSeries, SeriesDescription),
  });
}

TEST_F(RecordClassTest, SeriesValues) {
  ExpectValueFamily<IDicomDirSeries, SHORT>(
      {HALVORINE_VALUE_FIELD(IDicomDirSeries, SeriesNumber, 0)});
  ExpectValueFamily<IDicomDirSeries, DATE>(
      {HALVORINE_VALUE_FIELD(IDicomDirSeries, SeriesDateTime, 0.0)});
}

TEST_F(RecordClassTest, SeriesSetCalibrationStoresNothing) {
  ComPtr<IDicomDirSeries> series = Make<IDicomDirSeries>();
  ComPtr<IDicomDirImage> image = Make<IDicomDirImage>();
  ASSERT_TRUE(series && image);
  image->SetPixelSpacing(0.5, 0.25);
  series->SetImages(ArrayOf({image.get()}).get());

  EXPECT_EQ(series->SetCalibration(2.0, 3.0), E_NOTIMPL);

  SafeArrayPtr images;
  ASSERT_EQ(series->GetImages(images.Receive()), S_OK);
  EXPECT_EQ(Elements(images.get()), std::vector<IUnknown*>{image.get()});
  double x = 0.0;
  double y = 0.0;
  image->GetPixelSpacing(&x, &y);
  EXPECT_EQ(x, 0.5);
  EXPECT_EQ(y, 0.25);
}

TEST_F(RecordClassTest, StudyTexts) {
  ExpectTextFamily<IDicomDirStudy>({
      HALVORINE_FIELD(IDicomDirStudy, StudyInstUID),
      HALVORINE_FIELD(IDicomDirStudy, StudyID),
      HALVORINE_FIELD(IDicomDirStudy, AccessionNr),
      HALVORINE_FIELD(IDicomDirStudy, StudyDescription),
      HALVORINE_FIELD(IDicomDirStudy, Institution),
  });
}

TEST_F(RecordClassTest, StudyStudyDate) {
  ExpectValueFamily<IDicomDirStudy, DATE>({HALVORINE_VALUE_FIELD(IDicomDirStudy, StudyDate, 0.0)});
}

// Each child array and each back link, across the four classes.
TEST_F(RecordClassTest, ChildArraysAndBackLinks) {
  ExpectArrayFamily<IDicomDirPatient>(
      {&IDicomDirPatient::GetStudies, &IDicomDirPatient::SetStudies});
  ExpectArrayFamily<IDicomDirStudy>({&IDicomDirStudy::GetSeries, &IDicomDirStudy::SetSeries});
  ExpectArrayFamily<IDicomDirSeries>({&IDicomDirSeries::GetImages, &IDicomDirSeries::SetImages});
  ExpectLinkFamily<IDicomDirStudy, IDicomDirPatient>(
      {&IDicomDirStudy::GetPatient, &IDicomDirStudy::SetPatient});
  ExpectLinkFamily<IDicomDirSeries, IDicomDirStudy>(
      {&IDicomDirSeries::GetStudy, &IDicomDirSeries::SetStudy});
  ExpectLinkFamily<I, IDicomDirSeries>({&I::GetSeries, &I::SetSeries});
}

}  // namespace
}  // namespace halvorine
