// The library's five entry points.
#include <halvorine/dicomdir.h>

#include "service/ClassFactory.h"
#include "service/ComObject.h"
#include "service/DicomDirImpl.h"
#include "service/FailureBoundary.h"
#include "service/ModuleLock.h"
#include "service/Registrar.h"

using halvorine::ClassFactory;

HALVORINE_API HRESULT CreateUnregisteredComInstance(void** ppv, REFIID riid) {
  return halvorine::CreateObject<halvorine::DicomDirImpl>(riid, ppv);
}

HALVORINE_API HRESULT DllCanUnloadNow() {
  return halvorine::ModuleLock::Count() == 0 ? S_OK : S_FALSE;
}

HALVORINE_API HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  ClassFactory* factory = halvorine::FindClassFactory(rclsid);
  if (factory == nullptr) {
    *ppv = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  return factory->QueryInterface(riid, ppv);
}

HALVORINE_API HRESULT DllRegisterServer() {
  return halvorine::RunGuarded(halvorine::RegisterComponent);
}

HALVORINE_API HRESULT DllUnregisterServer() {
  return halvorine::RunGuarded(halvorine::UnregisterComponent);
}
