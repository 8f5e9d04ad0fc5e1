#ifndef HALVORINE_PLATFORM_COM_INPROCSERVERS_H
#define HALVORINE_PLATFORM_COM_INPROCSERVERS_H

#include <halvorine/com.h>

#include <map>
#include <string>

namespace halvorine {

// The in-process server modules that activation has loaded, each once under the path that the
// registry gives. A module stays loaded until FreeUnused finds its DllCanUnloadNow giving S_OK; one
// without DllCanUnloadNow stays to the end of the process. Not locked: callers serialise.
class InprocServers {
 public:
  InprocServers() = default;
  InprocServers(const InprocServers&) = delete;
  InprocServers& operator=(const InprocServers&) = delete;

  // Loads the module at path unless it is loaded, and gives what its DllGetClassObject gives.
  HRESULT GetClassObject(const std::string& path, REFCLSID rclsid, REFIID riid, void** ppv);
  void FreeUnused();

 private:
  using GetClassObjectEntry = HRESULT (*)(REFCLSID, REFIID, void**);
  using CanUnloadNowEntry = HRESULT (*)();
  struct Module {
    void* handle;
    GetClassObjectEntry getClassObject;
    CanUnloadNowEntry canUnloadNow;
  };

  HRESULT Load(const std::string& path, Module** module);

  std::map<std::string, Module> modules_;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_COM_INPROCSERVERS_H
