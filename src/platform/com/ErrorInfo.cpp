// Error records: one object serves as ICreateErrorInfo while it is filled and as IErrorInfo
// while it is read. Each thread keeps its own record, released when the thread ends.
#include <halvorine/com.h>

#include <atomic>
#include <new>

namespace {

// Replaces *field with a copy of text; a null text gives a null field.
HRESULT StoreText(BSTR* field, LPOLESTR text) {
  BSTR copy = SysAllocString(text);
  if (copy == nullptr && text != nullptr) return E_OUTOFMEMORY;
  SysFreeString(*field);
  *field = copy;
  return S_OK;
}

HRESULT CopyText(BSTR field, BSTR* out) {
  if (out == nullptr) return E_INVALIDARG;
  *out = SysAllocString(field);
  return (*out == nullptr && field != nullptr) ? E_OUTOFMEMORY : S_OK;
}

class ErrorInfo final : public IErrorInfo, public ICreateErrorInfo {
 public:
  ErrorInfo() = default;
  ErrorInfo(const ErrorInfo&) = delete;
  ErrorInfo& operator=(const ErrorInfo&) = delete;

  HRESULT QueryInterface(REFIID riid, void** ppvObject) override {
    if (ppvObject == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IErrorInfo)) {
      *ppvObject = static_cast<IErrorInfo*>(this);
    } else if (IsEqualIID(riid, IID_ICreateErrorInfo)) {
      *ppvObject = static_cast<ICreateErrorInfo*>(this);
    } else {
      *ppvObject = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT GetGUID(GUID* pGUID) override {
    if (pGUID == nullptr) return E_INVALIDARG;
    *pGUID = guid_;
    return S_OK;
  }
  HRESULT GetSource(BSTR* pBstrSource) override { return CopyText(source_, pBstrSource); }
  HRESULT GetDescription(BSTR* pBstrDescription) override {
    return CopyText(description_, pBstrDescription);
  }
  HRESULT GetHelpFile(BSTR* pBstrHelpFile) override { return CopyText(helpFile_, pBstrHelpFile); }
  HRESULT GetHelpContext(DWORD* pdwHelpContext) override {
    if (pdwHelpContext == nullptr) return E_INVALIDARG;
    *pdwHelpContext = helpContext_;
    return S_OK;
  }

  HRESULT SetGUID(REFGUID rguid) override {
    guid_ = rguid;
    return S_OK;
  }
  HRESULT SetSource(LPOLESTR szSource) override { return StoreText(&source_, szSource); }
  HRESULT SetDescription(LPOLESTR szDescription) override {
    return StoreText(&description_, szDescription);
  }
  HRESULT SetHelpFile(LPOLESTR szHelpFile) override { return StoreText(&helpFile_, szHelpFile); }
  HRESULT SetHelpContext(DWORD dwHelpContext) override {
    helpContext_ = dwHelpContext;
    return S_OK;
  }

 private:
  ~ErrorInfo() {
    SysFreeString(source_);
    SysFreeString(description_);
    SysFreeString(helpFile_);
  }

  std::atomic<ULONG> references_{1};
  GUID guid_ = GUID_NULL;
  BSTR source_ = nullptr;
  BSTR description_ = nullptr;
  BSTR helpFile_ = nullptr;
  DWORD helpContext_ = 0;
};

// The calling thread's record; its reference goes when the thread ends.
class ThreadRecord {
 public:
  ~ThreadRecord() { Replace(nullptr); }
  IErrorInfo* Take() {
    IErrorInfo* record = record_;
    record_ = nullptr;
    return record;
  }
  void Replace(IErrorInfo* record) {
    if (record != nullptr) record->AddRef();
    if (record_ != nullptr) record_->Release();
    record_ = record;
  }

 private:
  IErrorInfo* record_ = nullptr;
};

thread_local ThreadRecord threadRecord;

}  // namespace

HALVOCOM_API HRESULT CreateErrorInfo(ICreateErrorInfo** pperrinfo) {
  if (pperrinfo == nullptr) return E_INVALIDARG;
  auto* record = new (std::nothrow) ErrorInfo;
  *pperrinfo = record;
  return record == nullptr ? E_OUTOFMEMORY : S_OK;
}

HALVOCOM_API HRESULT SetErrorInfo(ULONG /*dwReserved*/, IErrorInfo* perrinfo) {
  threadRecord.Replace(perrinfo);
  return S_OK;
}

HALVOCOM_API HRESULT GetErrorInfo(ULONG /*dwReserved*/, IErrorInfo** pperrinfo) {
  if (pperrinfo == nullptr) return E_INVALIDARG;
  *pperrinfo = threadRecord.Take();
  return *pperrinfo == nullptr ? S_FALSE : S_OK;
}
