#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <vector>

#include "RecordFamilies.h"
#include "ServiceTestSupport.h"

namespace halvorine {
namespace {

using DicomDirSeriesTest = ServiceTest;

TEST_F(DicomDirSeriesTest, Texts) {
  ExpectTextFamily<IDicomDirSeries>({
      HALVORINE_FIELD(IDicomDirSeries, SeriesInstUID),
      HALVORINE_FIELD(IDicomDirSeries, Modality),
      HALVORINE_FIELD(IDicomDirSeries, SeriesDescription),
  });
}

TEST_F(DicomDirSeriesTest, Values) {
  ExpectValueFamily<IDicomDirSeries, SHORT>(
      {HALVORINE_VALUE_FIELD(IDicomDirSeries, SeriesNumber, 0)});
  ExpectValueFamily<IDicomDirSeries, DATE>(
      {HALVORINE_VALUE_FIELD(IDicomDirSeries, SeriesDateTime, 0.0)});
}

TEST_F(DicomDirSeriesTest, Images) {
  ExpectArrayFamily<IDicomDirSeries>({&IDicomDirSeries::GetImages, &IDicomDirSeries::SetImages});
}

TEST_F(DicomDirSeriesTest, Study) {
  ExpectLinkFamily<IDicomDirSeries, IDicomDirStudy>(
      {&IDicomDirSeries::GetStudy, &IDicomDirSeries::SetStudy});
}

TEST_F(DicomDirSeriesTest, SetCalibrationStoresNothing) {
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

}  // namespace
}  // namespace halvorine
