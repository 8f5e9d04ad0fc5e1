#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdint>

#include "RecordFamilies.h"
#include "ServiceTestSupport.h"

namespace halvorine {
namespace {

using DicomDirImageTest = ServiceTest;
using I = IDicomDirImage;

TEST_F(DicomDirImageTest, Texts) {
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

TEST_F(DicomDirImageTest, Numbers) {
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

TEST_F(DicomDirImageTest, DoublesAndDates) {
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

TEST_F(DicomDirImageTest, Booleans) {
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

TEST_F(DicomDirImageTest, Pairs) {
  ExpectPairFamily<I, double>({
      HALVORINE_FIELD(I, PixelSpacing),
      HALVORINE_FIELD(I, PixelAspectRatio),
  });
  ExpectPairFamily<I, SHORT>({HALVORINE_FIELD(I, CenterOfCircularShutter)});
}

TEST_F(DicomDirImageTest, Series) {
  ExpectLinkFamily<I, IDicomDirSeries>({&I::GetSeries, &I::SetSeries});
}

TEST_F(DicomDirImageTest, IsTaggedIsFalseForAnyHandle) {
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

}  // namespace
}  // namespace halvorine
