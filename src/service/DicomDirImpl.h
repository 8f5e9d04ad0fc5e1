#ifndef HALVORINE_SERVICE_DICOMDIRIMPL_H
#define HALVORINE_SERVICE_DICOMDIRIMPL_H

#include <halvorine/dicomdir.h>

#include "platform/BString.h"
#include "reading/DirectoryReader.h"
#include "service/ComObject.h"

namespace halvorine {

// The object that a host talks to. Every operation runs inside the failure boundary: it returns
// a status code, and on failure the thread's error record holds the description. An instance
// keeps no tree between calls: each load or write starts from nothing.
class DicomDirImpl final : public ComObject<IDicomDirImpl, IID_IDicomDirImpl> {
 public:
  // Making an instance fills the viewer's file list when it is empty; destroying any instance
  // empties it.
  DicomDirImpl();
  ~DicomDirImpl() override;

  HRESULT LoadDicomDir(BSTR bstrDirectoryName, SAFEARRAY** ppPatients) override;
  HRESULT CreateDicomDir(BSTR bstrDirectoryName, BSTR bstrTitle, SAFEARRAY* pPatients,
                         BSTR* pbstrOutputDirectory, VARIANT_BOOL bCopyViewer,
                         BSTR bstrCulture) override;
  HRESULT InitializeTrace(BSTR bstrTraceLogFileName, LONG nTraceLevel) override;

 private:
  // The folder of the latest load that passed its argument checks: the root of its image paths.
  BString directoryName_;
  // Filled and read by a load only; its entries lead nowhere once the load returns.
  RecordOffsetIndex recordOffsetIndex_;
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_DICOMDIRIMPL_H
