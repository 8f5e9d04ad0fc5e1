#include "service/RecordProperties.h"

namespace halvorine {

HRESULT GetText(const BString& field, BSTR* out) {
  if (out == nullptr) return E_POINTER;
  *out = SysAllocString(field.get());
  return (*out == nullptr && !field.IsNull()) ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetText(BString* field, const OLECHAR* value) {
  if (field == nullptr) return E_OUTOFMEMORY;
  BString copy = BString::Copy(value);
  if (copy.IsNull() && value != nullptr) return E_OUTOFMEMORY;
  *field = std::move(copy);
  return S_OK;
}

HRESULT GetArray(const SafeArrayPtr& field, SAFEARRAY** out) {
  if (out == nullptr) return E_POINTER;
  return SafeArrayCopy(field.get(), out);
}

// The former copy goes only once the new one stands, so a failed copy keeps the field as it was.
HRESULT SetArray(SafeArrayPtr& field, SAFEARRAY* value) {
  SafeArrayPtr copy;
  const HRESULT hr = SafeArrayCopy(value, copy.Receive());
  if (SUCCEEDED(hr)) field = std::move(copy);
  return hr;
}

}  // namespace halvorine
