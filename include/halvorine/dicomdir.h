// The component's interfaces, identifiers and exports.
//
// A host makes a DicomDirImpl (CreateUnregisteredComInstance, or DllGetClassObject and the class
// object's CreateInstance) and calls its three operations. Every operation returns a status code;
// on a failure the calling thread's error record (GetErrorInfo) holds the description.
//
// Record objects carry the patient, study, series and image tree. A tree is held from the top:
// an array field owns a copy of the array given to its setter, and that copy holds one reference
// to each child; a back link (GetPatient, GetStudy, GetSeries of an image) is a bare pointer that
// adds no reference, is valid only while the parent lives, and must not be released.
//
// The operations stand in their slot order: changing it breaks every compiled host.
#ifndef HALVORINE_DICOMDIR_H
#define HALVORINE_DICOMDIR_H

#include <halvorine/com.h>

// {3F6B156F-B54E-4D87-9E47-BB22DC0F4200}
inline constexpr GUID LIBID_DicomDirLib = {0x3F6B156F, 0xB54E, 0x4D87,
                                           {0x9E, 0x47, 0xBB, 0x22, 0xDC, 0x0F, 0x42, 0x00}};

// {28E31A13-2D2D-430E-A8D2-95B35B0FD851}
inline constexpr IID IID_IDicomDirImpl = {0x28E31A13, 0x2D2D, 0x430E,
                                          {0xA8, 0xD2, 0x95, 0xB3, 0x5B, 0x0F, 0xD8, 0x51}};
// {16C7529C-9403-44A0-84E5-E56421B67D92}
inline constexpr IID IID_IDicomDirPatient = {0x16C7529C, 0x9403, 0x44A0,
                                             {0x84, 0xE5, 0xE5, 0x64, 0x21, 0xB6, 0x7D, 0x92}};
// {85140E65-8752-4B7C-B81D-2C51D84C7C9D}
inline constexpr IID IID_IDicomDirStudy = {0x85140E65, 0x8752, 0x4B7C,
                                           {0xB8, 0x1D, 0x2C, 0x51, 0xD8, 0x4C, 0x7C, 0x9D}};
// {A679876D-E063-4514-A5D5-0A375D671674}
inline constexpr IID IID_IDicomDirSeries = {0xA679876D, 0xE063, 0x4514,
                                            {0xA5, 0xD5, 0x0A, 0x37, 0x5D, 0x67, 0x16, 0x74}};
// {D108C1EE-B928-416A-AFD7-5C0A82A01542}
inline constexpr IID IID_IDicomDirImage = {0xD108C1EE, 0xB928, 0x416A,
                                           {0xAF, 0xD7, 0x5C, 0x0A, 0x82, 0xA0, 0x15, 0x42}};

// {ED660F5F-49A3-4A42-92AF-478F19A6A7A0}
inline constexpr CLSID CLSID_DicomDirImpl = {0xED660F5F, 0x49A3, 0x4A42,
                                             {0x92, 0xAF, 0x47, 0x8F, 0x19, 0xA6, 0xA7, 0xA0}};
// {37300FB3-A5FE-460F-9348-69C62D708087}
inline constexpr CLSID CLSID_DicomDirPatient = {0x37300FB3, 0xA5FE, 0x460F,
                                                {0x93, 0x48, 0x69, 0xC6, 0x2D, 0x70, 0x80, 0x87}};
// {6FF9DB67-136F-4287-9DBF-1B173FD6E97E}
inline constexpr CLSID CLSID_DicomDirStudy = {0x6FF9DB67, 0x136F, 0x4287,
                                              {0x9D, 0xBF, 0x1B, 0x17, 0x3F, 0xD6, 0xE9, 0x7E}};
// {AC2E3BA6-9577-4348-9D79-2BEEC9CABF74}
inline constexpr CLSID CLSID_DicomDirSeries = {0xAC2E3BA6, 0x9577, 0x4348,
                                               {0x9D, 0x79, 0x2B, 0xEE, 0xC9, 0xCA, 0xBF, 0x74}};
// {6060DE27-F2ED-456B-9972-8A46A782AA40}
inline constexpr CLSID CLSID_DicomDirImage = {0x6060DE27, 0xF2ED, 0x456B,
                                              {0x99, 0x72, 0x8A, 0x46, 0xA7, 0x82, 0xAA, 0x40}};

struct IDicomDirPatient;
struct IDicomDirStudy;
struct IDicomDirSeries;
struct IDicomDirImage;

struct IDicomDirImpl : IUnknown {
  // *ppPatients receives an array of IDicomDirPatient that the caller destroys.
  virtual HRESULT LoadDicomDir(BSTR bstrDirectoryName, SAFEARRAY** ppPatients) = 0;
  // *pbstrOutputDirectory is set before anything can fail; the caller frees it.
  virtual HRESULT CreateDicomDir(BSTR bstrDirectoryName, BSTR bstrTitle, SAFEARRAY* pPatients,
                                 BSTR* pbstrOutputDirectory, VARIANT_BOOL bCopyViewer,
                                 BSTR bstrCulture) = 0;
  virtual HRESULT InitializeTrace(BSTR bstrTraceLogFileName, LONG nTraceLevel) = 0;

 protected:
  ~IDicomDirImpl() = default;
};

struct IDicomDirPatient : IUnknown {
  virtual HRESULT GetPatientID(BSTR* pRetVal) = 0;
  virtual HRESULT SetPatientID(BSTR strPatID) = 0;
  virtual HRESULT GetDicomPatName(BSTR* pRetVal) = 0;
  virtual HRESULT SetDicomPatName(BSTR strDicomPatName) = 0;
  virtual HRESULT GetPatientSex(BSTR* pRetVal) = 0;
  virtual HRESULT SetPatientSex(BSTR strPatSex) = 0;
  virtual HRESULT GetStudies(SAFEARRAY** ppStudies) = 0;
  virtual HRESULT SetStudies(SAFEARRAY* pStudies) = 0;

 protected:
  ~IDicomDirPatient() = default;
};

struct IDicomDirStudy : IUnknown {
  virtual HRESULT GetStudyInstUID(BSTR* pRetVal) = 0;
  virtual HRESULT SetStudyInstUID(BSTR strStudyInstUID) = 0;
  virtual HRESULT GetStudyID(BSTR* pRetVal) = 0;
  virtual HRESULT SetStudyID(BSTR strStudyID) = 0;
  virtual HRESULT GetAccessionNr(BSTR* pRetVal) = 0;
  virtual HRESULT SetAccessionNr(BSTR strAccNr) = 0;
  virtual HRESULT GetStudyDescription(BSTR* pRetVal) = 0;
  virtual HRESULT SetStudyDescription(BSTR strStudyDescr) = 0;
  virtual HRESULT GetInstitution(BSTR* pRetVal) = 0;
  virtual HRESULT SetInstitution(BSTR strInstitution) = 0;
  virtual HRESULT GetStudyDate(DATE* pRetVal) = 0;
  virtual HRESULT SetStudyDate(DATE studyDate) = 0;
  virtual HRESULT GetSeries(SAFEARRAY** ppSeries) = 0;
  virtual HRESULT SetSeries(SAFEARRAY* pSeries) = 0;
  // A bare pointer: no reference is added, and the caller must not release it.
  virtual HRESULT GetPatient(IDicomDirPatient** ppPatient) = 0;
  virtual HRESULT SetPatient(IDicomDirPatient* pPatient) = 0;

 protected:
  ~IDicomDirStudy() = default;
};

struct IDicomDirSeries : IUnknown {
  virtual HRESULT GetSeriesInstUID(BSTR* pRetVal) = 0;
  virtual HRESULT SetSeriesInstUID(BSTR strSeriesInstUID) = 0;
  virtual HRESULT GetSeriesNumber(SHORT* pRetVal) = 0;
  virtual HRESULT SetSeriesNumber(SHORT nSeriesNr) = 0;
  virtual HRESULT GetModality(BSTR* pRetVal) = 0;
  virtual HRESULT SetModality(BSTR strModality) = 0;
  virtual HRESULT GetSeriesDateTime(DATE* pRetVal) = 0;
  virtual HRESULT SetSeriesDateTime(DATE seriesDateTime) = 0;
  virtual HRESULT GetSeriesDescription(BSTR* pRetVal) = 0;
  virtual HRESULT SetSeriesDescription(BSTR strSeriesDescr) = 0;
  // Stores nothing and returns E_NOTIMPL.
  virtual HRESULT SetCalibration(double dPixelSpacingX, double dPixelSpacingY) = 0;
  virtual HRESULT GetImages(SAFEARRAY** ppImages) = 0;
  virtual HRESULT SetImages(SAFEARRAY* pImages) = 0;
  // A bare pointer: no reference is added, and the caller must not release it.
  virtual HRESULT GetStudy(IDicomDirStudy** ppStudy) = 0;
  virtual HRESULT SetStudy(IDicomDirStudy* pStudy) = 0;

 protected:
  ~IDicomDirSeries() = default;
};

struct IDicomDirImage : IUnknown {
  virtual HRESULT GetSOPInstanceUID(BSTR* pRetVal) = 0;
  virtual HRESULT SetSOPInstanceUID(BSTR strSOPInstanceUID) = 0;
  virtual HRESULT GetSOPClassUID(BSTR* pRetVal) = 0;
  virtual HRESULT SetSOPClassUID(BSTR strSOPClassUID) = 0;
  virtual HRESULT GetInstanceNumber(LONGLONG* pRetVal) = 0;
  virtual HRESULT SetInstanceNumber(LONGLONG lInstanceNumber) = 0;
  virtual HRESULT GetImageFilename(BSTR* pRetVal) = 0;
  virtual HRESULT SetImageFilename(BSTR strFileName) = 0;
  virtual HRESULT GetTransferSyntaxUID(BSTR* pRetVal) = 0;
  virtual HRESULT SetTransferSyntaxUID(BSTR strTransferSyntax) = 0;
  virtual HRESULT GetImageType(BSTR* pRetVal) = 0;
  virtual HRESULT SetImageType(BSTR strImageType) = 0;
  virtual HRESULT GetImageAcquisitionDateTime(DATE* pRetVal) = 0;
  virtual HRESULT SetImageAcquisitionDateTime(DATE imageAcquisitionDateTime) = 0;
  virtual HRESULT GetImageRows(SHORT* pRetVal) = 0;
  virtual HRESULT SetImageRows(SHORT nImageRows) = 0;
  virtual HRESULT GetImageColumns(SHORT* pRetVal) = 0;
  virtual HRESULT SetImageColumns(SHORT nImageColumns) = 0;
  virtual HRESULT GetNumberOfFrames(SHORT* pRetVal) = 0;
  virtual HRESULT SetNumberOfFrames(SHORT nNumberOfFrames) = 0;
  virtual HRESULT GetFrameIdx(SHORT* pRetVal) = 0;
  virtual HRESULT SetFrameIdx(SHORT nFrameIdx) = 0;
  virtual HRESULT GetSamplesPerPixel(SHORT* pRetVal) = 0;
  virtual HRESULT SetSamplesPerPixel(SHORT nSamplesPerPixel) = 0;
  virtual HRESULT GetPhotometricInterpretation(BSTR* pRetVal) = 0;
  virtual HRESULT SetPhotometricInterpretation(BSTR strPhotometricInterpretation) = 0;
  virtual HRESULT GetPlanarConfiguration(SHORT* pRetVal) = 0;
  virtual HRESULT SetPlanarConfiguration(SHORT nPlanarConfiguration) = 0;
  virtual HRESULT GetPixelSpacing(double* dSpacingX, double* dSpacingY) = 0;
  virtual HRESULT SetPixelSpacing(double dSpacingX, double dSpacingY) = 0;
  virtual HRESULT GetPixelAspectRatio(double* dPixelAspectRatioX, double* dPixelAspectRatioY) = 0;
  virtual HRESULT SetPixelAspectRatio(double dPixelAspectRatioX, double dPixelAspectRatioY) = 0;
  virtual HRESULT GetImagerPixelSpacing(double* pRetVal) = 0;
  virtual HRESULT SetImagerPixelSpacing(double dImagerPixelSpacing) = 0;
  virtual HRESULT GetBitsAllocated(SHORT* pRetVal) = 0;
  virtual HRESULT SetBitsAllocated(SHORT nBitsAllocated) = 0;
  virtual HRESULT GetBitsStored(SHORT* pRetVal) = 0;
  virtual HRESULT SetBitsStored(SHORT nBitsStored) = 0;
  virtual HRESULT GetHighBit(SHORT* pRetVal) = 0;
  virtual HRESULT SetHighBit(SHORT nHighBit) = 0;
  virtual HRESULT GetPixelRepresentation(SHORT* pRetVal) = 0;
  virtual HRESULT SetPixelRepresentation(SHORT nPixelRepresentation) = 0;
  virtual HRESULT GetLossyImageCompression(BSTR* pRetVal) = 0;
  virtual HRESULT SetLossyImageCompression(BSTR strLossyImageCompression) = 0;
  virtual HRESULT GetLossyImageCompressionRatio(double* pRetVal) = 0;
  virtual HRESULT SetLossyImageCompressionRatio(double dLossyImageCompressionRatio) = 0;
  virtual HRESULT GetSliceThickness(double* pRetVal) = 0;
  virtual HRESULT SetSliceThickness(double dSliceThickness) = 0;
  virtual HRESULT GetSpacingBetweenSlices(double* pRetVal) = 0;
  virtual HRESULT SetSpacingBetweenSlices(double dSpacingBetweenSlices) = 0;
  virtual HRESULT GetSliceLocation(double* pRetVal) = 0;
  virtual HRESULT SetSliceLocation(double dSliceLocation) = 0;
  virtual HRESULT GetImagePositionPatient(BSTR* pRetVal) = 0;
  virtual HRESULT SetImagePositionPatient(BSTR strImagePositionPatient) = 0;
  virtual HRESULT GetImageOrientationPatient(BSTR* pRetVal) = 0;
  virtual HRESULT SetImageOrientationPatient(BSTR strImageOrientationPatient) = 0;
  virtual HRESULT GetPresentationIntentType(BSTR* pRetVal) = 0;
  virtual HRESULT SetPresentationIntentType(BSTR strPresentationIntentType) = 0;
  virtual HRESULT GetConvolutionKernel(BSTR* pRetVal) = 0;
  virtual HRESULT SetConvolutionKernel(BSTR strConvolutionKernel) = 0;
  virtual HRESULT GetManufacturer(BSTR* pRetVal) = 0;
  virtual HRESULT SetManufacturer(BSTR strManufacturer) = 0;
  virtual HRESULT GetWindowCenter(LONG* pRetVal) = 0;
  virtual HRESULT SetWindowCenter(LONG nWindowCenter) = 0;
  virtual HRESULT GetWindowWidth(LONG* pRetVal) = 0;
  virtual HRESULT SetWindowWidth(LONG nWindowWidth) = 0;
  virtual HRESULT GetRescaleIntercept(double* pRetVal) = 0;
  virtual HRESULT SetRescaleIntercept(double dRescaleIntercept) = 0;
  virtual HRESULT GetRescaleSlope(double* pRetVal) = 0;
  virtual HRESULT SetRescaleSlope(double dRescaleSlope) = 0;
  virtual HRESULT GetRescaleType(BSTR* pRetVal) = 0;
  virtual HRESULT SetRescaleType(BSTR strRescaleType) = 0;
  virtual HRESULT GetContrastBolusAgent(BSTR* pRetVal) = 0;
  virtual HRESULT SetContrastBolusAgent(BSTR strContrastBolusAgent) = 0;
  virtual HRESULT GetPrivateFileCopy(VARIANT_BOOL* pRetVal) = 0;
  virtual HRESULT SetPrivateFileCopy(VARIANT_BOOL bPrivateFileCopy) = 0;
  virtual HRESULT GetDicomDir(VARIANT_BOOL* pRetVal) = 0;
  virtual HRESULT SetDicomDir(VARIANT_BOOL bDicomDir) = 0;
  // Always false; hViewPort is not looked at.
  virtual HRESULT IsTagged(void* hViewPort, VARIANT_BOOL* pRetVal) = 0;
  virtual HRESULT GetShutterShape(BSTR* pRetVal) = 0;
  virtual HRESULT SetShutterShape(BSTR strShutterShape) = 0;
  virtual HRESULT GetShutterLeftVerticalEdge(SHORT* pRetVal) = 0;
  virtual HRESULT SetShutterLeftVerticalEdge(SHORT nShutterLeftVerticalEdge) = 0;
  virtual HRESULT GetShutterRightVerticalEdge(SHORT* pRetVal) = 0;
  virtual HRESULT SetShutterRightVerticalEdge(SHORT nShutterRightVerticalEdge) = 0;
  virtual HRESULT GetShutterUpperHorizontalEdge(SHORT* pRetVal) = 0;
  virtual HRESULT SetShutterUpperHorizontalEdge(SHORT nShutterUpperHorizontalEdge) = 0;
  virtual HRESULT GetShutterLowerHorizontalEdge(SHORT* pRetVal) = 0;
  virtual HRESULT SetShutterLowerHorizontalEdge(SHORT nShutterLowerHorizontalEdge) = 0;
  virtual HRESULT GetCenterOfCircularShutter(SHORT* nCenterOfCircularShutterX,
                                             SHORT* nCenterOfCircularShutterY) = 0;
  virtual HRESULT SetCenterOfCircularShutter(SHORT nCenterOfCircularShutterX,
                                             SHORT nCenterOfCircularShutterY) = 0;
  virtual HRESULT GetRadiusOfCircularShutter(SHORT* pRetVal) = 0;
  virtual HRESULT SetRadiusOfCircularShutter(SHORT nRadiusOfCircularShutter) = 0;
  virtual HRESULT GetVerticesOfPolygonalShutter(BSTR* pRetVal) = 0;
  virtual HRESULT SetVerticesOfPolygonalShutter(BSTR strVerticesOfPolygonalShutter) = 0;
  virtual HRESULT GetShutterPresentationValue(LONG* pRetVal) = 0;
  virtual HRESULT SetShutterPresentationValue(LONG nShutterPresentationValue) = 0;
  // A bare pointer: no reference is added, and the caller must not release it.
  virtual HRESULT GetSeries(IDicomDirSeries** ppSeries) = 0;
  virtual HRESULT SetSeries(IDicomDirSeries* pSeries) = 0;

 protected:
  ~IDicomDirImage() = default;
};

#if defined(HALVORINE_BUILDING)
#define HALVORINE_API extern "C" __attribute__((visibility("default")))
#else
#define HALVORINE_API extern "C"
#endif

// Makes a DicomDirImpl without consulting any registration and asks it for riid.
HALVORINE_API HRESULT CreateUnregisteredComInstance(void** ppv, REFIID riid);
HALVORINE_API HRESULT DllCanUnloadNow();
HALVORINE_API HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv);
HALVORINE_API HRESULT DllRegisterServer();
HALVORINE_API HRESULT DllUnregisterServer();

#endif  // HALVORINE_DICOMDIR_H
