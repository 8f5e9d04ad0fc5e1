#include "service/DicomDirImpl.h"

#include <cstdint>
#include <string>

#include "reading/DirectoryLocation.h"
#include "reading/DirectoryReader.h"
#include "service/FailureBoundary.h"
#include "service/LoadedRecords.h"
#include "support/TraceLog.h"
#include "writing/DiscBuilder.h"
#include "writing/ViewerPackage.h"

namespace halvorine {
namespace {

constexpr std::uint32_t kHighestTraceLevel = 4;

}  // namespace

DicomDirImpl::DicomDirImpl() { FillViewerFileList(); }

DicomDirImpl::~DicomDirImpl() { EmptyViewerFileList(); }

HRESULT DicomDirImpl::LoadDicomDir(BSTR bstrDirectoryName, SAFEARRAY** ppPatients) {
  return RunGuarded([&]() -> HRESULT {
    if (bstrDirectoryName == nullptr) {
      return ReportFailure(u"Unspecified directory name in the Halvorine.", E_POINTER);
    }
    if (ppPatients == nullptr) {
      return ReportFailure(u"NULL patients array in the Halvorine.", E_POINTER);
    }
    directoryName_ = BString::Copy(bstrDirectoryName);
    std::string path;
    if (!FindDicomDirFile(bstrDirectoryName, &path)) {
      return ReportFailure(u"No DICOMDIR file found in the specified directory.", E_FAIL);
    }
    DirectoryReader(recordOffsetIndex_, kRecordCreators, directoryName_.View())
        .ReadDirectory(path, ppPatients);
    return S_OK;
  });
}

HRESULT DicomDirImpl::CreateDicomDir(BSTR bstrDirectoryName, BSTR bstrTitle, SAFEARRAY* pPatients,
                                     BSTR* pbstrOutputDirectory, VARIANT_BOOL bCopyViewer,
                                     BSTR bstrCulture) {
  return RunGuarded([&]() -> HRESULT {
    if (bstrDirectoryName == nullptr) {
      return ReportFailure(u"Unspecified directory name in the Halvorine.", E_POINTER);
    }
    if (bstrTitle == nullptr) {
      return ReportFailure(u"Unspecified CD package title in the Halvorine.", E_POINTER);
    }
    if (pPatients == nullptr) return ReportFailure(u"NULL array in the Halvorine.", E_POINTER);
    if (pbstrOutputDirectory == nullptr) {
      return ReportFailure(u"NULL output directory in the Halvorine.", E_POINTER);
    }
    DiscBuilder(FileSystem::Posix(), SettingsAccess::Process())
        .BuildDisc(bstrDirectoryName, bstrTitle, pPatients, pbstrOutputDirectory, bCopyViewer,
                   bstrCulture);
    return S_OK;
  });
}

HRESULT DicomDirImpl::InitializeTrace(BSTR bstrTraceLogFileName, LONG nTraceLevel) {
  return RunGuarded([&]() -> HRESULT {
    const auto level = static_cast<std::uint32_t>(nTraceLevel);
    if (level > kHighestTraceLevel) {
      return ReportFailure(u"The Halvorine received an invalid trace level.", E_POINTER);
    }
    const std::u16string name =
        bstrTraceLogFileName == nullptr ? u"ProcessingTrace.log" : bstrTraceLogFileName;
    GetTraceLog().Initialize(name, level);
    return S_OK;
  });
}

}  // namespace halvorine
