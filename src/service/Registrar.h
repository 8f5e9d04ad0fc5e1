// Writes the registration scripts into the registry of classes through the platform runtime.
#ifndef HALVORINE_SERVICE_REGISTRAR_H
#define HALVORINE_SERVICE_REGISTRAR_H

#include <halvorine/com.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "service/RegistrationScripts.h"

namespace halvorine {

// One set of %NAME% replacements, with which a script is applied as one change of the registry:
// all of it or, on a failure, nothing.
class Registrar {
 public:
  // name is given without its '%'s.
  void Replace(std::u16string_view name, std::u16string text);

  // Makes the keys and values of the script; a kReplaced key loses its former content first.
  HRESULT Register(RegistrationScript script) const;
  // Removes the script's keys in the reverse order of the script, as their Removal says.
  HRESULT Unregister(RegistrationScript script) const;

 private:
  struct Step;
  std::u16string Substitute(const char16_t* pattern) const;
  static HRESULT Apply(const std::vector<Step>& steps);

  std::vector<std::pair<std::u16string, std::u16string>> replacements_;
};

// DllRegisterServer: script 101, the script of each class in their order, then the type library,
// up to the first failing status, which is returned. %MODULE% is the absolute path under which
// the component was loaded.
HRESULT RegisterComponent();
// DllUnregisterServer: the same scripts in the reverse order, each removing what it wrote.
HRESULT UnregisterComponent();

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_REGISTRAR_H
