#ifndef HALVORINE_SERVICE_DICOMDIRIMAGE_H
#define HALVORINE_SERVICE_DICOMDIRIMAGE_H

#include <halvorine/dicomdir.h>

#include "service/ComObject.h"
#include "service/RecordProperties.h"

namespace halvorine {

// An image record: mostly values carried for the host, and a bare back link to its series.
// RescaleSlope starts at 1.0 and DicomDir at true; everything else starts empty.
class DicomDirImage final : public ComObject<IDicomDirImage, IID_IDicomDirImage> {
 public:
  DicomDirImage() = default;

  HALVORINE_TEXT_PROPERTY(SOPInstanceUID, strSOPInstanceUID, sopInstanceUID_)
  HALVORINE_TEXT_PROPERTY(SOPClassUID, strSOPClassUID, sopClassUID_)
  HALVORINE_VALUE_PROPERTY(LONGLONG, InstanceNumber, lInstanceNumber, instanceNumber_)
  HALVORINE_TEXT_PROPERTY(ImageFilename, strFileName, imageFilename_)
  HALVORINE_TEXT_PROPERTY(TransferSyntaxUID, strTransferSyntax, transferSyntaxUID_)
  HALVORINE_TEXT_PROPERTY(ImageType, strImageType, imageType_)
  HALVORINE_VALUE_PROPERTY(DATE, ImageAcquisitionDateTime, imageAcquisitionDateTime,
                           imageAcquisitionDateTime_)
  HALVORINE_VALUE_PROPERTY(SHORT, ImageRows, nImageRows, imageRows_)
  HALVORINE_VALUE_PROPERTY(SHORT, ImageColumns, nImageColumns, imageColumns_)
  HALVORINE_VALUE_PROPERTY(SHORT, NumberOfFrames, nNumberOfFrames, numberOfFrames_)
  HALVORINE_VALUE_PROPERTY(SHORT, FrameIdx, nFrameIdx, frameIdx_)
  HALVORINE_VALUE_PROPERTY(SHORT, SamplesPerPixel, nSamplesPerPixel, samplesPerPixel_)
  HALVORINE_TEXT_PROPERTY(PhotometricInterpretation, strPhotometricInterpretation,
                          photometricInterpretation_)
  HALVORINE_VALUE_PROPERTY(SHORT, PlanarConfiguration, nPlanarConfiguration, planarConfiguration_)
  HALVORINE_PAIR_PROPERTY(double, PixelSpacing, dSpacingX, dSpacingY, pixelSpacingX_,
                          pixelSpacingY_)
  HALVORINE_PAIR_PROPERTY(double, PixelAspectRatio, dPixelAspectRatioX, dPixelAspectRatioY,
                          pixelAspectRatioX_, pixelAspectRatioY_)
  HALVORINE_VALUE_PROPERTY(double, ImagerPixelSpacing, dImagerPixelSpacing, imagerPixelSpacing_)
  HALVORINE_VALUE_PROPERTY(SHORT, BitsAllocated, nBitsAllocated, bitsAllocated_)
  HALVORINE_VALUE_PROPERTY(SHORT, BitsStored, nBitsStored, bitsStored_)
  HALVORINE_VALUE_PROPERTY(SHORT, HighBit, nHighBit, highBit_)
  HALVORINE_VALUE_PROPERTY(SHORT, PixelRepresentation, nPixelRepresentation, pixelRepresentation_)
  HALVORINE_TEXT_PROPERTY(LossyImageCompression, strLossyImageCompression, lossyImageCompression_)
  HALVORINE_VALUE_PROPERTY(double, LossyImageCompressionRatio, dLossyImageCompressionRatio,
                           lossyImageCompressionRatio_)
  HALVORINE_VALUE_PROPERTY(double, SliceThickness, dSliceThickness, sliceThickness_)
  HALVORINE_VALUE_PROPERTY(double, SpacingBetweenSlices, dSpacingBetweenSlices,
                           spacingBetweenSlices_)
  HALVORINE_VALUE_PROPERTY(double, SliceLocation, dSliceLocation, sliceLocation_)
  HALVORINE_TEXT_PROPERTY(ImagePositionPatient, strImagePositionPatient, imagePositionPatient_)
  HALVORINE_TEXT_PROPERTY(ImageOrientationPatient, strImageOrientationPatient,
                          imageOrientationPatient_)
  HALVORINE_TEXT_PROPERTY(PresentationIntentType, strPresentationIntentType,
                          presentationIntentType_)
  HALVORINE_TEXT_PROPERTY(ConvolutionKernel, strConvolutionKernel, convolutionKernel_)
  HALVORINE_TEXT_PROPERTY(Manufacturer, strManufacturer, manufacturer_)
  HALVORINE_VALUE_PROPERTY(LONG, WindowCenter, nWindowCenter, windowCenter_)
  HALVORINE_VALUE_PROPERTY(LONG, WindowWidth, nWindowWidth, windowWidth_)
  HALVORINE_VALUE_PROPERTY(double, RescaleIntercept, dRescaleIntercept, rescaleIntercept_)
  HALVORINE_VALUE_PROPERTY(double, RescaleSlope, dRescaleSlope, rescaleSlope_)
  HALVORINE_TEXT_PROPERTY(RescaleType, strRescaleType, rescaleType_)
  HALVORINE_TEXT_PROPERTY(ContrastBolusAgent, strContrastBolusAgent, contrastBolusAgent_)
  HALVORINE_VALUE_PROPERTY(VARIANT_BOOL, PrivateFileCopy, bPrivateFileCopy, privateFileCopy_)
  HALVORINE_VALUE_PROPERTY(VARIANT_BOOL, DicomDir, bDicomDir, dicomDir_)
  HRESULT IsTagged(void* hViewPort, VARIANT_BOOL* pRetVal) override;
  HALVORINE_TEXT_PROPERTY(ShutterShape, strShutterShape, shutterShape_)
  HALVORINE_VALUE_PROPERTY(SHORT, ShutterLeftVerticalEdge, nShutterLeftVerticalEdge,
                           shutterLeftVerticalEdge_)
  HALVORINE_VALUE_PROPERTY(SHORT, ShutterRightVerticalEdge, nShutterRightVerticalEdge,
                           shutterRightVerticalEdge_)
  HALVORINE_VALUE_PROPERTY(SHORT, ShutterUpperHorizontalEdge, nShutterUpperHorizontalEdge,
                           shutterUpperHorizontalEdge_)
  HALVORINE_VALUE_PROPERTY(SHORT, ShutterLowerHorizontalEdge, nShutterLowerHorizontalEdge,
                           shutterLowerHorizontalEdge_)
  HALVORINE_PAIR_PROPERTY(SHORT, CenterOfCircularShutter, nCenterOfCircularShutterX,
                          nCenterOfCircularShutterY, centerOfCircularShutterX_,
                          centerOfCircularShutterY_)
  HALVORINE_VALUE_PROPERTY(SHORT, RadiusOfCircularShutter, nRadiusOfCircularShutter,
                           radiusOfCircularShutter_)
  HALVORINE_TEXT_PROPERTY(VerticesOfPolygonalShutter, strVerticesOfPolygonalShutter,
                          verticesOfPolygonalShutter_)
  HALVORINE_VALUE_PROPERTY(LONG, ShutterPresentationValue, nShutterPresentationValue,
                           shutterPresentationValue_)
  HALVORINE_LINK_PROPERTY(IDicomDirSeries, Series, ppSeries, pSeries, series_)

 private:
  BString sopClassUID_;
  BString sopInstanceUID_;
  LONGLONG instanceNumber_ = 0;
  BString imageFilename_;
  BString transferSyntaxUID_;
  BString imageType_;
  DATE imageAcquisitionDateTime_ = 0.0;
  SHORT imageRows_ = 0;
  SHORT imageColumns_ = 0;
  SHORT numberOfFrames_ = 0;
  SHORT frameIdx_ = 0;
  SHORT samplesPerPixel_ = 0;
  BString photometricInterpretation_;
  SHORT planarConfiguration_ = 0;
  double pixelSpacingX_ = 0.0;
  double pixelSpacingY_ = 0.0;
  double pixelAspectRatioX_ = 0.0;
  double pixelAspectRatioY_ = 0.0;
  double imagerPixelSpacing_ = 0.0;
  SHORT bitsAllocated_ = 0;
  SHORT bitsStored_ = 0;
  SHORT highBit_ = 0;
  SHORT pixelRepresentation_ = 0;
  BString lossyImageCompression_;
  double lossyImageCompressionRatio_ = 0.0;
  double sliceThickness_ = 0.0;
  double spacingBetweenSlices_ = 0.0;
  double sliceLocation_ = 0.0;
  BString imagePositionPatient_;
  BString imageOrientationPatient_;
  BString presentationIntentType_;
  BString convolutionKernel_;
  BString manufacturer_;
  LONG windowCenter_ = 0;
  LONG windowWidth_ = 0;
  double rescaleIntercept_ = 0.0;
  double rescaleSlope_ = 1.0;
  BString rescaleType_;
  BString contrastBolusAgent_;
  VARIANT_BOOL privateFileCopy_ = VARIANT_FALSE;
  VARIANT_BOOL dicomDir_ = VARIANT_TRUE;
  BString shutterShape_;
  SHORT shutterLeftVerticalEdge_ = 0;
  SHORT shutterRightVerticalEdge_ = 0;
  SHORT shutterUpperHorizontalEdge_ = 0;
  SHORT shutterLowerHorizontalEdge_ = 0;
  SHORT centerOfCircularShutterX_ = 0;
  SHORT centerOfCircularShutterY_ = 0;
  SHORT radiusOfCircularShutter_ = 0;
  BString verticesOfPolygonalShutter_;
  LONG shutterPresentationValue_ = 0;
  IDicomDirSeries* series_ = nullptr;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_DICOMDIRIMAGE_H
