#include "service/FailureBoundary.h"

#include <halvorine/dicomdir.h>

#include <string>

#include "platform/ComPtr.h"

namespace halvorine {

namespace {

// The record's source is the programmatic name of DicomDirImpl as the registry tells it; it is
// left out while the class isn't registered.
void SetSource(ICreateErrorInfo* creator) {
  LPOLESTR progId = nullptr;
  if (FAILED(ProgIDFromCLSID(CLSID_DicomDirImpl, &progId))) return;
  creator->SetSource(progId);
  CoTaskMemFree(progId);
}

}  // namespace

HRESULT ReportFailure(const char16_t* message, HRESULT status) noexcept {
  ComPtr<ICreateErrorInfo> creator;
  if (FAILED(CreateErrorInfo(creator.Receive()))) return status;
  creator->SetGUID(IID_IDicomDirImpl);
  SetSource(creator.get());
  creator->SetDescription(const_cast<LPOLESTR>(message != nullptr ? message : u"Unknown Error"));
  ComPtr<IErrorInfo> record;
  if (SUCCEEDED(
          creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(record.Receive())))) {
    SetErrorInfo(0, record.get());
  }
  return status;
}

HRESULT ReportException(const MyException& failure) noexcept {
  try {
    const std::u16string description = failure.ToXml();
    return ReportFailure(description.c_str(), E_FAIL);
  } catch (...) {
    return ReportFailure(kUnknownError, E_FAIL);
  }
}

}  // namespace halvorine
