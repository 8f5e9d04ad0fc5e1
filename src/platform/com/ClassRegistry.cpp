#include "platform/com/ClassRegistry.h"

#include "platform/com/GuidText.h"
#include "platform/com/RegistryFile.h"

namespace halvorine {

HRESULT ClassRegistry::Load() {
  std::string problem;
  return RegistryFile(RegistryFile::DefaultPath()).Read(&content_, &problem);
}

HRESULT ClassRegistry::ClassOfName(std::string_view progId, CLSID* clsid) const {
  if (!RegistryContent::IsValidKey(progId) || progId.find('\\') != std::string_view::npos) {
    return CO_E_CLASSSTRING;
  }
  const std::string* text = content_.Value(std::string(progId) + "\\CLSID", "");
  return text != nullptr && ParseGuid(*text, clsid) ? S_OK : CO_E_CLASSSTRING;
}

HRESULT ClassRegistry::NameOfClass(REFCLSID clsid, std::string* progId) const {
  return ClassValue(clsid, "ProgID", progId);
}

HRESULT ClassRegistry::ServerOfClass(REFCLSID clsid, std::string* path) const {
  return ClassValue(clsid, "InprocServer32", path);
}

HRESULT ClassRegistry::ClassValue(REFCLSID clsid, std::string_view subkey,
                                  std::string* value) const {
  const std::string key = "CLSID\\" + GuidText(clsid) + "\\" + std::string(subkey);
  const std::string* text = content_.Value(key, "");
  if (text == nullptr || text->empty()) return REGDB_E_CLASSNOTREG;
  *value = *text;
  return S_OK;
}

}  // namespace halvorine
