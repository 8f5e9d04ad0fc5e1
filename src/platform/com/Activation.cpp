// Activation of in-process servers through the registry. One lock covers the loaded modules and
// the making of an instance, so that CoFreeUnusedLibraries on another thread can't unload a
// module between its class object and the new instance. It is recursive because a server may
// activate other classes while it makes an instance.
#include <halvorine/com.h>

#include <mutex>
#include <string>

#include "platform/com/ClassRegistry.h"
#include "platform/com/InprocServers.h"
#include "platform/com/NoThrow.h"

namespace halvorine {
namespace {

std::recursive_mutex& ActivationLock() {
  static std::recursive_mutex lock;
  return lock;
}

InprocServers& LoadedServers() {
  static InprocServers servers;
  return servers;
}

HRESULT GetClassObject(REFCLSID rclsid, DWORD dwClsContext, REFIID riid, void** ppv) {
  if ((dwClsContext & CLSCTX_INPROC_SERVER) == 0) return REGDB_E_CLASSNOTREG;
  ClassRegistry registry;
  std::string path;
  if (HRESULT hr = registry.Load(); FAILED(hr)) return hr;
  if (HRESULT hr = registry.ServerOfClass(rclsid, &path); FAILED(hr)) return hr;
  std::lock_guard<std::recursive_mutex> hold(ActivationLock());
  return LoadedServers().GetClassObject(path, rclsid, riid, ppv);
}

}  // namespace
}  // namespace halvorine

using halvorine::NoThrow;

HALVOCOM_API HRESULT CoGetClassObject(REFCLSID rclsid, DWORD dwClsContext,
                                      COSERVERINFO* /*pServerInfo*/, REFIID riid, LPVOID* ppv) {
  if (ppv == nullptr) return E_INVALIDARG;
  *ppv = nullptr;
  return NoThrow([&] { return halvorine::GetClassObject(rclsid, dwClsContext, riid, ppv); });
}

HALVOCOM_API HRESULT CoCreateInstance(REFCLSID rclsid, LPUNKNOWN pUnkOuter, DWORD dwClsContext,
                                      REFIID riid, LPVOID* ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  std::lock_guard<std::recursive_mutex> hold(halvorine::ActivationLock());
  IClassFactory* factory = nullptr;
  HRESULT hr = CoGetClassObject(rclsid, dwClsContext, nullptr, IID_IClassFactory,
                                reinterpret_cast<void**>(&factory));
  if (FAILED(hr)) return hr;
  hr = factory->CreateInstance(pUnkOuter, riid, ppv);
  factory->Release();
  return hr;
}

HALVOCOM_API void CoFreeUnusedLibraries() {
  std::lock_guard<std::recursive_mutex> hold(halvorine::ActivationLock());
  halvorine::LoadedServers().FreeUnused();
}
