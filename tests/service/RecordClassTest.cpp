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
using P = IDicomDirPatient;
using St = IDicomDirStudy;
using Se = IDicomDirSeries;
#define F(Interface, Name) HALVORINE_FIELD(Interface, Name)
#define V(Interface, Name, initial) HALVORINE_VALUE_FIELD(Interface, Name, initial)

TEST_F(RecordClassTest, ImageFields) {
  ExpectTextFamily<I>(
      {F(I, SOPInstanceUID), F(I, SOPClassUID), F(I, ImageFilename), F(I, TransferSyntaxUID),
       F(I, ImageType), F(I, PhotometricInterpretation), F(I, LossyImageCompression),
       F(I, ImagePositionPatient), F(I, ImageOrientationPatient), F(I, PresentationIntentType),
       F(I, ConvolutionKernel), F(I, Manufacturer), F(I, RescaleType), F(I, ContrastBolusAgent),
       F(I, ShutterShape), F(I, VerticesOfPolygonalShutter)});
  ExpectValueFamily<I, LONGLONG>({V(I, InstanceNumber, 0)});
  ExpectValueFamily<I, SHORT>(
      {V(I, ImageRows, 0), V(I, ImageColumns, 0), V(I, NumberOfFrames, 0), V(I, FrameIdx, 0),
       V(I, SamplesPerPixel, 0), V(I, PlanarConfiguration, 0), V(I, BitsAllocated, 0),
       V(I, BitsStored, 0), V(I, HighBit, 0), V(I, PixelRepresentation, 0),
       V(I, ShutterLeftVerticalEdge, 0), V(I, ShutterRightVerticalEdge, 0),
       V(I, ShutterUpperHorizontalEdge, 0), V(I, ShutterLowerHorizontalEdge, 0),
       V(I, RadiusOfCircularShutter, 0)});
  ExpectValueFamily<I, LONG>(
      {V(I, WindowCenter, 0), V(I, WindowWidth, 0), V(I, ShutterPresentationValue, 0)});
  ExpectValueFamily<I, double>({V(I, ImageAcquisitionDateTime, 0.0), V(I, ImagerPixelSpacing, 0.0),
                                V(I, LossyImageCompressionRatio, 0.0), V(I, SliceThickness, 0.0),
                                V(I, SpacingBetweenSlices, 0.0), V(I, SliceLocation, 0.0),
                                V(I, RescaleIntercept, 0.0), V(I, RescaleSlope, 1.0)});
  ExpectValueFamily<I, VARIANT_BOOL>(
      {V(I, PrivateFileCopy, VARIANT_FALSE), V(I, DicomDir, VARIANT_TRUE)});
  ExpectPairFamily<I, double>({F(I, PixelSpacing), F(I, PixelAspectRatio)});
  ExpectPairFamily<I, SHORT>({F(I, CenterOfCircularShutter)});
  ComPtr<I> image = Make<I>();
  ASSERT_TRUE(image);
  VARIANT_BOOL dicomDir = 0;
  image->GetDicomDir(&dicomDir);
  EXPECT_EQ(static_cast<std::uint16_t>(dicomDir), 0xFFFF);
  int someWindow = 0;
  for (void* handle : {static_cast<void*>(nullptr), static_cast<void*>(&someWindow),
                       reinterpret_cast<void*>(~std::uintptr_t{0})}) {
    VARIANT_BOOL tagged = VARIANT_TRUE;
    EXPECT_EQ(image->IsTagged(handle, &tagged), S_OK);
    EXPECT_EQ(tagged, VARIANT_FALSE) << "IsTagged is false for any handle";
  }
  EXPECT_EQ(image->IsTagged(nullptr, nullptr), E_POINTER);
}

TEST_F(RecordClassTest, PatientStudyAndSeriesFields) {
  ExpectTextFamily<P>({F(P, PatientID), F(P, DicomPatName), F(P, PatientSex)});
  ExpectTextFamily<St>({F(St, StudyInstUID), F(St, StudyID), F(St, AccessionNr),
                        F(St, StudyDescription), F(St, Institution)});
  ExpectValueFamily<St, DATE>({V(St, StudyDate, 0.0)});
  ExpectTextFamily<Se>({F(Se, SeriesInstUID), F(Se, Modality), F(Se, SeriesDescription)});
  ExpectValueFamily<Se, SHORT>({V(Se, SeriesNumber, 0)});
  ExpectValueFamily<Se, DATE>({V(Se, SeriesDateTime, 0.0)});
}

// Each child array and each back link, across the four classes.
TEST_F(RecordClassTest, ChildArraysAndBackLinks) {
  ExpectArrayFamily<P>({&P::GetStudies, &P::SetStudies});
  ExpectArrayFamily<St>({&St::GetSeries, &St::SetSeries});
  ExpectArrayFamily<Se>({&Se::GetImages, &Se::SetImages});
  ExpectLinkFamily<St, P>({&St::GetPatient, &St::SetPatient});
  ExpectLinkFamily<Se, St>({&Se::GetStudy, &Se::SetStudy});
  ExpectLinkFamily<I, Se>({&I::GetSeries, &I::SetSeries});
}

// patient -> study -> series -> image, each child with its back link, held by the root array
// alone: releasing it frees the tree, but a study held elsewhere outlives its patient.
TEST_F(RecordClassTest, TheRootArrayHoldsTheTree) {
  for (const bool holdStudy : {false, true}) {
    ComPtr<P> patient = Make<P>();
    ComPtr<St> study = Make<St>();
    ComPtr<Se> series = Make<Se>();
    ComPtr<I> image = Make<I>();
    ASSERT_TRUE(patient && study && series && image);
    image->SetSeries(series.get());
    series->SetImages(ArrayOf({image.get()}).get());
    series->SetStudy(study.get());
    study->SetSeries(ArrayOf({series.get()}).get());
    study->SetPatient(patient.get());
    study->SetStudyInstUID(Text(u"1.2.3").get());
    patient->SetStudies(ArrayOf({study.get()}).get());
    SafeArrayPtr patients = ArrayOf({patient.get()});
    IDicomDirPatient* const held = patient.Detach();
    held->Release();
    image = ComPtr<I>();
    series = ComPtr<Se>();
    if (!holdStudy) study = ComPtr<St>();
    EXPECT_EQ(ModuleLock::Count(), 4);
    IDicomDirPatient* backLink = nullptr;
    if (holdStudy) {
      ASSERT_EQ(study->GetPatient(&backLink), S_OK);
    }
    EXPECT_EQ(backLink, holdStudy ? held : nullptr);
    patients = SafeArrayPtr();
    EXPECT_EQ(ModuleLock::Count(), holdStudy ? 3 : 0) << "only the patient should be gone";
    if (!holdStudy) continue;
    BString uid;
    EXPECT_EQ(study->GetStudyInstUID(uid.Receive()), S_OK);
    EXPECT_EQ(uid.View(), u"1.2.3");
    study = ComPtr<St>();
    EXPECT_EQ(ModuleLock::Count(), 0);
  }
}

TEST_F(RecordClassTest, SeriesSetCalibrationStoresNothing) {
  ComPtr<Se> series = Make<Se>();
  ComPtr<I> image = Make<I>();
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

}  // namespace
}  // namespace halvorine
