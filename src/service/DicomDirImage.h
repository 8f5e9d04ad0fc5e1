#ifndef HALVORINE_SERVICE_DICOMDIRIMAGE_H
#define HALVORINE_SERVICE_DICOMDIRIMAGE_H

#include <halvorine/dicomdir.h>

#include "reading/RecordFields.h"
#include "service/ComObject.h"
#include "service/RecordProperties.h"

namespace halvorine {

// An image record: mostly values carried for the host, and a bare back link to its series.
// RescaleSlope starts at 1.0 and DicomDir at true; everything else starts empty. What a load fills
// and the writer reads stands in the object; the rest, which most images never set, in details_.
class DicomDirImage final : public ComObject<IDicomDirImage, IID_IDicomDirImage> {
 public:
  DicomDirImage() = default;

  HALVORINE_TEXT_PROPERTY(SOPInstanceUID, strSOPInstanceUID, sopInstanceUID_)
  HALVORINE_TEXT_PROPERTY(SOPClassUID, strSOPClassUID, sopClassUID_)
  HALVORINE_VALUE_PROPERTY(LONGLONG, InstanceNumber, lInstanceNumber, instanceNumber_)
  HALVORINE_TEXT_PROPERTY(ImageFilename, strFileName, imageFilename_)
  HALVORINE_TEXT_PROPERTY(TransferSyntaxUID, strTransferSyntax, transferSyntaxUID_)
  HALVORINE_DETAIL_TEXT_PROPERTY(ImageType, strImageType, imageType)
  HALVORINE_DETAIL_VALUE_PROPERTY(DATE, ImageAcquisitionDateTime, imageAcquisitionDateTime,
                                  imageAcquisitionDateTime)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, ImageRows, nImageRows, imageRows)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, ImageColumns, nImageColumns, imageColumns)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, NumberOfFrames, nNumberOfFrames, numberOfFrames)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, FrameIdx, nFrameIdx, frameIdx)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, SamplesPerPixel, nSamplesPerPixel, samplesPerPixel)
  HALVORINE_DETAIL_TEXT_PROPERTY(PhotometricInterpretation, strPhotometricInterpretation,
                                 photometricInterpretation)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, PlanarConfiguration, nPlanarConfiguration,
                                  planarConfiguration)
  HALVORINE_DETAIL_PAIR_PROPERTY(double, PixelSpacing, dSpacingX, dSpacingY, pixelSpacingX,
                                 pixelSpacingY)
  HALVORINE_DETAIL_PAIR_PROPERTY(double, PixelAspectRatio, dPixelAspectRatioX, dPixelAspectRatioY,
                                 pixelAspectRatioX, pixelAspectRatioY)
  HALVORINE_DETAIL_VALUE_PROPERTY(double, ImagerPixelSpacing, dImagerPixelSpacing,
                                  imagerPixelSpacing)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, BitsAllocated, nBitsAllocated, bitsAllocated)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, BitsStored, nBitsStored, bitsStored)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, HighBit, nHighBit, highBit)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, PixelRepresentation, nPixelRepresentation,
                                  pixelRepresentation)
  HALVORINE_DETAIL_TEXT_PROPERTY(LossyImageCompression, strLossyImageCompression,
                                 lossyImageCompression)
  HALVORINE_DETAIL_VALUE_PROPERTY(double, LossyImageCompressionRatio, dLossyImageCompressionRatio,
                                  lossyImageCompressionRatio)
  HALVORINE_DETAIL_VALUE_PROPERTY(double, SliceThickness, dSliceThickness, sliceThickness)
  HALVORINE_DETAIL_VALUE_PROPERTY(double, SpacingBetweenSlices, dSpacingBetweenSlices,
                                  spacingBetweenSlices)
  HALVORINE_DETAIL_VALUE_PROPERTY(double, SliceLocation, dSliceLocation, sliceLocation)
  HALVORINE_DETAIL_TEXT_PROPERTY(ImagePositionPatient, strImagePositionPatient,
                                 imagePositionPatient)
  HALVORINE_DETAIL_TEXT_PROPERTY(ImageOrientationPatient, strImageOrientationPatient,
                                 imageOrientationPatient)
  HALVORINE_DETAIL_TEXT_PROPERTY(PresentationIntentType, strPresentationIntentType,
                                 presentationIntentType)
  HALVORINE_DETAIL_TEXT_PROPERTY(ConvolutionKernel, strConvolutionKernel, convolutionKernel)
  HALVORINE_DETAIL_TEXT_PROPERTY(Manufacturer, strManufacturer, manufacturer)
  HALVORINE_DETAIL_VALUE_PROPERTY(LONG, WindowCenter, nWindowCenter, windowCenter)
  HALVORINE_DETAIL_VALUE_PROPERTY(LONG, WindowWidth, nWindowWidth, windowWidth)
  HALVORINE_DETAIL_VALUE_PROPERTY(double, RescaleIntercept, dRescaleIntercept, rescaleIntercept)
  HALVORINE_DETAIL_VALUE_PROPERTY(double, RescaleSlope, dRescaleSlope, rescaleSlope)
  HALVORINE_DETAIL_TEXT_PROPERTY(RescaleType, strRescaleType, rescaleType)
  HALVORINE_DETAIL_TEXT_PROPERTY(ContrastBolusAgent, strContrastBolusAgent, contrastBolusAgent)
  HALVORINE_DETAIL_VALUE_PROPERTY(VARIANT_BOOL, PrivateFileCopy, bPrivateFileCopy, privateFileCopy)
  HALVORINE_DETAIL_VALUE_PROPERTY(VARIANT_BOOL, DicomDir, bDicomDir, dicomDir)
  HRESULT IsTagged(void* hViewPort, VARIANT_BOOL* pRetVal) override;
  HALVORINE_DETAIL_TEXT_PROPERTY(ShutterShape, strShutterShape, shutterShape)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, ShutterLeftVerticalEdge, nShutterLeftVerticalEdge,
                                  shutterLeftVerticalEdge)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, ShutterRightVerticalEdge, nShutterRightVerticalEdge,
                                  shutterRightVerticalEdge)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, ShutterUpperHorizontalEdge, nShutterUpperHorizontalEdge,
                                  shutterUpperHorizontalEdge)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, ShutterLowerHorizontalEdge, nShutterLowerHorizontalEdge,
                                  shutterLowerHorizontalEdge)
  HALVORINE_DETAIL_PAIR_PROPERTY(SHORT, CenterOfCircularShutter, nCenterOfCircularShutterX,
                                 nCenterOfCircularShutterY, centerOfCircularShutterX,
                                 centerOfCircularShutterY)
  HALVORINE_DETAIL_VALUE_PROPERTY(SHORT, RadiusOfCircularShutter, nRadiusOfCircularShutter,
                                  radiusOfCircularShutter)
  HALVORINE_DETAIL_TEXT_PROPERTY(VerticesOfPolygonalShutter, strVerticesOfPolygonalShutter,
                                 verticesOfPolygonalShutter)
  HALVORINE_DETAIL_VALUE_PROPERTY(LONG, ShutterPresentationValue, nShutterPresentationValue,
                                  shutterPresentationValue)
  HALVORINE_LINK_PROPERTY(IDicomDirSeries, Series, ppSeries, pSeries, series_)

  // The object of a loaded record.
  static HRESULT Create(const ImageFields& fields, IDicomDirImage** object) {
    const std::array<LoadedText<DicomDirImage>, 3> texts{{
        {&DicomDirImage::imageFilename_, fields.imageFilename},
        {&DicomDirImage::sopClassUID_, fields.sopClassUID},
        {&DicomDirImage::sopInstanceUID_, fields.sopInstanceUID},
    }};
    return CreateLoadedObject<DicomDirImage>(object, texts, [&](DicomDirImage& made) {
      made.instanceNumber_ = fields.instanceNumber.value_or(made.instanceNumber_);
      return true;
    });
  }

 private:
  struct Details {
    TextField imageType;
    DATE imageAcquisitionDateTime = 0.0;
    SHORT imageRows = 0;
    SHORT imageColumns = 0;
    SHORT numberOfFrames = 0;
    SHORT frameIdx = 0;
    SHORT samplesPerPixel = 0;
    TextField photometricInterpretation;
    SHORT planarConfiguration = 0;
    double pixelSpacingX = 0.0;
    double pixelSpacingY = 0.0;
    double pixelAspectRatioX = 0.0;
    double pixelAspectRatioY = 0.0;
    double imagerPixelSpacing = 0.0;
    SHORT bitsAllocated = 0;
    SHORT bitsStored = 0;
    SHORT highBit = 0;
    SHORT pixelRepresentation = 0;
    TextField lossyImageCompression;
    double lossyImageCompressionRatio = 0.0;
    double sliceThickness = 0.0;
    double spacingBetweenSlices = 0.0;
    double sliceLocation = 0.0;
    TextField imagePositionPatient;
    TextField imageOrientationPatient;
    TextField presentationIntentType;
    TextField convolutionKernel;
    TextField manufacturer;
    LONG windowCenter = 0;
    LONG windowWidth = 0;
    double rescaleIntercept = 0.0;
    double rescaleSlope = 1.0;
    TextField rescaleType;
    TextField contrastBolusAgent;
    VARIANT_BOOL privateFileCopy = VARIANT_FALSE;
    VARIANT_BOOL dicomDir = VARIANT_TRUE;
    TextField shutterShape;
    SHORT shutterLeftVerticalEdge = 0;
    SHORT shutterRightVerticalEdge = 0;
    SHORT shutterUpperHorizontalEdge = 0;
    SHORT shutterLowerHorizontalEdge = 0;
    SHORT centerOfCircularShutterX = 0;
    SHORT centerOfCircularShutterY = 0;
    SHORT radiusOfCircularShutter = 0;
    TextField verticesOfPolygonalShutter;
    LONG shutterPresentationValue = 0;
  };

  TextField sopClassUID_;
  TextField sopInstanceUID_;
  LONGLONG instanceNumber_ = 0;
  TextField imageFilename_;
  TextField transferSyntaxUID_;
  IDicomDirSeries* series_ = nullptr;
  DetailFields<Details> details_;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_DICOMDIRIMAGE_H
