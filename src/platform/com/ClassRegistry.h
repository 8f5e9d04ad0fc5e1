#ifndef HALVORINE_PLATFORM_COM_CLASSREGISTRY_H
#define HALVORINE_PLATFORM_COM_CLASSREGISTRY_H

#include <halvorine/com.h>

#include <string>
#include <string_view>

#include "platform/com/RegistryContent.h"

namespace halvorine {

// The classes that the registry file tells of, read once for one call of the runtime:
//
//   <ProgID>\CLSID                    default value: the class identifier
//   CLSID\{clsid}\ProgID              default value: the programmatic name
//   CLSID\{clsid}\InprocServer32      default value: the path of the module
class ClassRegistry {
 public:
  // Reads the registry file at its default place; a missing file knows no class. Fails with the
  // status of RegistryFile::Read.
  HRESULT Load();

  // CO_E_CLASSSTRING for a name that isn't registered or doesn't give a class identifier.
  HRESULT ClassOfName(std::string_view progId, CLSID* clsid) const;
  // REGDB_E_CLASSNOTREG when the class has no programmatic name.
  HRESULT NameOfClass(REFCLSID clsid, std::string* progId) const;
  // REGDB_E_CLASSNOTREG when the class has no in-process server.
  HRESULT ServerOfClass(REFCLSID clsid, std::string* path) const;

 private:
  HRESULT ClassValue(REFCLSID clsid, std::string_view subkey, std::string* value) const;

  RegistryContent content_;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_COM_CLASSREGISTRY_H
