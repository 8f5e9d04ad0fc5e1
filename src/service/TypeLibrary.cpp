#include "service/TypeLibrary.h"

#include <halvorine/dicomdir.h>

namespace halvorine {
namespace {

constexpr const char16_t* kDicomDirSeriesMethods[] = {
    u"GetSeriesInstUID",
    u"SetSeriesInstUID",
    u"GetSeriesNumber",
    u"SetSeriesNumber",
    u"GetModality",
    u"SetModality",
    u"GetSeriesDateTime",
    u"SetSeriesDateTime",
    u"GetSeriesDescription",
    u"SetSeriesDescription",
    u"SetCalibration",
    u"GetImages",
    u"SetImages",
    u"GetStudy",
    u"SetStudy",
};

constexpr const char16_t* kDicomDirImageMethods[] = {
    u"GetSOPInstanceUID",
    u"SetSOPInstanceUID",
    u"GetSOPClassUID",
    u"SetSOPClassUID",
    u"GetInstanceNumber",
    u"SetInstanceNumber",
    u"GetImageFilename",
    u"SetImageFilename",
    u"GetTransferSyntaxUID",
    u"SetTransferSyntaxUID",
    u"GetImageType",
    u"SetImageType",
    u"GetImageAcquisitionDateTime",
    u"SetImageAcquisitionDateTime",
    u"GetImageRows",
    u"SetImageRows",
    u"GetImageColumns",
    u"SetImageColumns",
    u"GetNumberOfFrames",
    u"SetNumberOfFrames",
    u"GetFrameIdx",
    u"SetFrameIdx",
    u"GetSamplesPerPixel",
    u"SetSamplesPerPixel",
    u"GetPhotometricInterpretation",
    u"SetPhotometricInterpretation",
    u"GetPlanarConfiguration",
    u"SetPlanarConfiguration",
    u"GetPixelSpacing",
    u"SetPixelSpacing",
    u"GetPixelAspectRatio",
    u"SetPixelAspectRatio",
    u"GetImagerPixelSpacing",
    u"SetImagerPixelSpacing",
    u"GetBitsAllocated",
    u"SetBitsAllocated",
    u"GetBitsStored",
    u"SetBitsStored",
    u"GetHighBit",
    u"SetHighBit",
    u"GetPixelRepresentation",
    u"SetPixelRepresentation",
    u"GetLossyImageCompression",
    u"SetLossyImageCompression",
    u"GetLossyImageCompressionRatio",
    u"SetLossyImageCompressionRatio",
    u"GetSliceThickness",
    u"SetSliceThickness",
    u"GetSpacingBetweenSlices",
    u"SetSpacingBetweenSlices",
    u"GetSliceLocation",
    u"SetSliceLocation",
    u"GetImagePositionPatient",
    u"SetImagePositionPatient",
    u"GetImageOrientationPatient",
    u"SetImageOrientationPatient",
    u"GetPresentationIntentType",
    u"SetPresentationIntentType",
    u"GetConvolutionKernel",
    u"SetConvolutionKernel",
    u"GetManufacturer",
    u"SetManufacturer",
    u"GetWindowCenter",
    u"SetWindowCenter",
    u"GetWindowWidth",
    u"SetWindowWidth",
    u"GetRescaleIntercept",
    u"SetRescaleIntercept",
    u"GetRescaleSlope",
    u"SetRescaleSlope",
    u"GetRescaleType",
    u"SetRescaleType",
    u"GetContrastBolusAgent",
    u"SetContrastBolusAgent",
    u"GetPrivateFileCopy",
    u"SetPrivateFileCopy",
    u"GetDicomDir",
    u"SetDicomDir",
    u"IsTagged",
    u"GetShutterShape",
    u"SetShutterShape",
    u"GetShutterLeftVerticalEdge",
    u"SetShutterLeftVerticalEdge",
    u"GetShutterRightVerticalEdge",
    u"SetShutterRightVerticalEdge",
    u"GetShutterUpperHorizontalEdge",
    u"SetShutterUpperHorizontalEdge",
    u"GetShutterLowerHorizontalEdge",
    u"SetShutterLowerHorizontalEdge",
    u"GetCenterOfCircularShutter",
    u"SetCenterOfCircularShutter",
    u"GetRadiusOfCircularShutter",
    u"SetRadiusOfCircularShutter",
    u"GetVerticesOfPolygonalShutter",
    u"SetVerticesOfPolygonalShutter",
    u"GetShutterPresentationValue",
    u"SetShutterPresentationValue",
    u"GetSeries",
    u"SetSeries",
};

constexpr const char16_t* kDicomDirStudyMethods[] = {
    u"GetStudyInstUID", u"SetStudyInstUID", u"GetStudyID",          u"SetStudyID",
    u"GetAccessionNr",  u"SetAccessionNr",  u"GetStudyDescription", u"SetStudyDescription",
    u"GetInstitution",  u"SetInstitution",  u"GetStudyDate",        u"SetStudyDate",
    u"GetSeries",       u"SetSeries",       u"GetPatient",          u"SetPatient",
};

constexpr const char16_t* kDicomDirPatientMethods[] = {
    u"GetPatientID",  u"SetPatientID",  u"GetDicomPatName", u"SetDicomPatName",
    u"GetPatientSex", u"SetPatientSex", u"GetStudies",      u"SetStudies",
};

constexpr const char16_t* kDicomDirImplMethods[] = {
    u"LoadDicomDir",
    u"CreateDicomDir",
    u"InitializeTrace",
};

constexpr TypeLibraryInterface kInterfaces[] = {
    {u"IDicomDirSeries", IID_IDicomDirSeries, kDicomDirSeriesMethods},
    {u"IDicomDirImage", IID_IDicomDirImage, kDicomDirImageMethods},
    {u"IDicomDirStudy", IID_IDicomDirStudy, kDicomDirStudyMethods},
    {u"IDicomDirPatient", IID_IDicomDirPatient, kDicomDirPatientMethods},
    {u"IDicomDirImpl", IID_IDicomDirImpl, kDicomDirImplMethods},
};

constexpr const CLSID* kClasses[] = {&CLSID_DicomDirImage, &CLSID_DicomDirSeries,
                                     &CLSID_DicomDirStudy, &CLSID_DicomDirPatient,
                                     &CLSID_DicomDirImpl};

constexpr TypeLibrary kDicomDirLib = {
    .name = u"DicomDirLib",
    .libid = LIBID_DicomDirLib,
    .majorVersion = 4,
    .minorVersion = 0,
    .lcid = 0x409,
    .helpText = u"DicomDir 4.0 Type Library",
    .interfaces = kInterfaces,
    .classes = kClasses,
};

}  // namespace

const TypeLibrary& DicomDirLib() { return kDicomDirLib; }

std::u16string InterfaceHelpText(const TypeLibraryInterface& entry) {
  return std::u16string(entry.name) + u" Interface";
}

std::u16string MethodHelpText(std::u16string_view method) {
  return u"method " + std::u16string(method);
}

}  // namespace halvorine
