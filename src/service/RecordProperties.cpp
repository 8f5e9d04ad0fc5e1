#include "service/RecordProperties.h"

namespace halvorine {

HRESULT GetText(const TextField& field, BSTR* out) {
  if (out == nullptr) return E_POINTER;
  return field.Get(out) ? S_OK : E_OUTOFMEMORY;
}

HRESULT SetText(TextField* field, const OLECHAR* value) {
  if (field == nullptr) return E_OUTOFMEMORY;
  return field->Set(value) ? S_OK : E_OUTOFMEMORY;
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
