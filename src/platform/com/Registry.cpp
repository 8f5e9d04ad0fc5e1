// The calls that read and write the registry of classes, and the text form of class identifiers.
// Names and values are UTF-16 at the calls and UTF-8 in the file.
#include <halvorine/com.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/TextCodec.h"
#include "platform/com/ClassRegistry.h"
#include "platform/com/GuidText.h"
#include "platform/com/NoThrow.h"
#include "platform/com/RegistryFile.h"

namespace halvorine {
namespace {

std::string Narrow(LPCOLESTR text) {
  return text == nullptr ? std::string() : Utf16ToUtf8(std::u16string_view(text));
}

// Leaves the calling thread an error record whose description is problem.
void ReportProblem(const std::string& problem) {
  ICreateErrorInfo* creator = nullptr;
  if (FAILED(CreateErrorInfo(&creator))) return;
  std::u16string description = Utf8ToUtf16(problem);
  creator->SetDescription(description.data());
  IErrorInfo* record = nullptr;
  if (SUCCEEDED(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&record)))) {
    SetErrorInfo(0, record);
    record->Release();
  }
  creator->Release();
}

struct Step {
  HALVOCOM_REGISTRY_ACTION action;
  std::string key;
  std::string valueName;
  std::string value;
  bool hasValue;
};

bool IsValid(const Step& step) {
  const bool known = step.action == HALVOCOM_REGISTRY_SET ||
                     step.action == HALVOCOM_REGISTRY_DELETE_TREE ||
                     step.action == HALVOCOM_REGISTRY_DELETE_IF_EMPTY;
  return known && RegistryContent::IsValidKey(step.key) &&
         RegistryContent::IsValidValue(step.valueName) && RegistryContent::IsValidValue(step.value);
}

void Apply(const Step& step, RegistryContent& content) {
  switch (step.action) {
    case HALVOCOM_REGISTRY_SET:
      if (step.hasValue) {
        content.SetValue(step.key, step.valueName, step.value);
      } else {
        content.CreateKey(step.key);
      }
      break;
    case HALVOCOM_REGISTRY_DELETE_TREE:
      content.DeleteTree(step.key);
      break;
    case HALVOCOM_REGISTRY_DELETE_IF_EMPTY:
      content.DeleteIfEmpty(step.key);
      break;
  }
}

HRESULT UpdateRegistry(const HALVOCOM_REGISTRY_STEP* steps, ULONG cSteps) {
  std::vector<Step> changes;
  for (ULONG i = 0; i < cSteps; ++i) {
    const HALVOCOM_REGISTRY_STEP& step = steps[i];
    changes.push_back(Step{step.action, Narrow(step.key), Narrow(step.valueName),
                           Narrow(step.value), step.value != nullptr});
    if (!IsValid(changes.back())) {
      ReportProblem("Step " + std::to_string(i + 1) + " of a registry change is invalid");
      return E_INVALIDARG;
    }
  }
  std::string problem;
  const HRESULT hr = RegistryFile(RegistryFile::DefaultPath())
                         .Update(
                             [&](RegistryContent& content) {
                               for (const Step& step : changes) Apply(step, content);
                               return S_OK;
                             },
                             &problem);
  if (FAILED(hr)) ReportProblem(problem);
  return hr;
}

}  // namespace
}  // namespace halvorine

using halvorine::NoThrow;

HALVOCOM_API HRESULT CLSIDFromProgID(LPCOLESTR lpszProgID, LPCLSID lpclsid) {
  if (lpszProgID == nullptr || lpclsid == nullptr) return E_INVALIDARG;
  return NoThrow([&] {
    halvorine::ClassRegistry registry;
    if (HRESULT hr = registry.Load(); FAILED(hr)) return hr;
    return registry.ClassOfName(halvorine::Narrow(lpszProgID), lpclsid);
  });
}

HALVOCOM_API HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* lplpszProgID) {
  if (lplpszProgID == nullptr) return E_INVALIDARG;
  *lplpszProgID = nullptr;
  return NoThrow([&] {
    halvorine::ClassRegistry registry;
    std::string name;
    if (HRESULT hr = registry.Load(); FAILED(hr)) return hr;
    if (HRESULT hr = registry.NameOfClass(clsid, &name); FAILED(hr)) return hr;
    const std::u16string wide = halvorine::Utf8ToUtf16(name);
    const std::size_t bytes = (wide.size() + 1) * sizeof(OLECHAR);
    auto* copy = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes));
    if (copy == nullptr) return E_OUTOFMEMORY;
    std::memcpy(copy, wide.c_str(), bytes);
    *lplpszProgID = copy;
    return S_OK;
  });
}

HALVOCOM_API HRESULT HalvocomUpdateRegistry(const HALVOCOM_REGISTRY_STEP* steps, ULONG cSteps) {
  if (steps == nullptr && cSteps != 0) return E_INVALIDARG;
  return NoThrow([&] { return halvorine::UpdateRegistry(steps, cSteps); });
}

HALVOCOM_API int StringFromGUID2(REFGUID rguid, LPOLESTR lpsz, int cchMax) {
  std::u16string text;
  if (FAILED(NoThrow([&] {
        text = halvorine::Utf8ToUtf16(halvorine::GuidText(rguid));
        return S_OK;
      }))) {
    return 0;
  }
  const int needed = static_cast<int>(text.size()) + 1;
  if (lpsz == nullptr || cchMax < needed) return 0;
  text.copy(lpsz, text.size());
  lpsz[text.size()] = u'\0';
  return needed;
}

HALVOCOM_API HRESULT CLSIDFromString(LPCOLESTR lpsz, LPCLSID pclsid) {
  if (lpsz == nullptr || pclsid == nullptr) return E_INVALIDARG;
  if (lpsz[0] != u'{') return CLSIDFromProgID(lpsz, pclsid);
  return NoThrow([&] {
    return halvorine::ParseGuid(halvorine::Narrow(lpsz), pclsid) ? S_OK : CO_E_CLASSSTRING;
  });
}
