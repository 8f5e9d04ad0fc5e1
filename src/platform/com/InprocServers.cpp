#include "platform/com/InprocServers.h"

#include <dlfcn.h>

namespace halvorine {

HRESULT InprocServers::GetClassObject(const std::string& path, REFCLSID rclsid, REFIID riid,
                                      void** ppv) {
  Module* module = nullptr;
  if (HRESULT hr = Load(path, &module); FAILED(hr)) return hr;
  return module->getClassObject(rclsid, riid, ppv);
}

void InprocServers::FreeUnused() {
  for (auto at = modules_.begin(); at != modules_.end();) {
    const Module& module = at->second;
    if (module.canUnloadNow != nullptr && module.canUnloadNow() == S_OK) {
      dlclose(module.handle);
      at = modules_.erase(at);
    } else {
      ++at;
    }
  }
}

HRESULT InprocServers::Load(const std::string& path, Module** module) {
  if (auto at = modules_.find(path); at != modules_.end()) {
    *module = &at->second;
    return S_OK;
  }
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
  auto getClassObject = reinterpret_cast<GetClassObjectEntry>(dlsym(handle, "DllGetClassObject"));
  if (getClassObject == nullptr) {
    dlclose(handle);
    return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
  }
  auto canUnloadNow = reinterpret_cast<CanUnloadNowEntry>(dlsym(handle, "DllCanUnloadNow"));
  *module = &modules_.try_emplace(path, Module{handle, getClassObject, canUnloadNow}).first->second;
  return S_OK;
}

}  // namespace halvorine
