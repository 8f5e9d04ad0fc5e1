#include "service/ClassFactory.h"

#include <halvorine/dicomdir.h>

#include "service/DicomDirImage.h"
#include "service/DicomDirImpl.h"
#include "service/DicomDirPatient.h"
#include "service/DicomDirSeries.h"
#include "service/DicomDirStudy.h"
#include "service/ModuleLock.h"

namespace halvorine {

HRESULT ClassFactory::QueryInterface(REFIID riid, void** ppvObject) {
  if (ppvObject == nullptr) return E_POINTER;
  if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
    *ppvObject = static_cast<IClassFactory*>(this);
    return S_OK;
  }
  *ppvObject = nullptr;
  return E_NOINTERFACE;
}

HRESULT ClassFactory::CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppvObject) {
  if (ppvObject == nullptr) return E_POINTER;
  if (pUnkOuter != nullptr) {
    *ppvObject = nullptr;
    return CLASS_E_NOAGGREGATION;
  }
  return creator_(riid, ppvObject);
}

HRESULT ClassFactory::LockServer(BOOL fLock) {
  if (fLock) {
    ModuleLock::Lock();
  } else {
    ModuleLock::Unlock();
  }
  return S_OK;
}

ClassFactory* FindClassFactory(REFCLSID rclsid) {
  struct Entry {
    const CLSID& clsid;
    ClassFactory factory;
  };
  static Entry classes[] = {
      {CLSID_DicomDirImpl, ClassFactory(CreateObject<DicomDirImpl>)},
      {CLSID_DicomDirPatient, ClassFactory(CreateObject<DicomDirPatient>)},
      {CLSID_DicomDirStudy, ClassFactory(CreateObject<DicomDirStudy>)},
      {CLSID_DicomDirSeries, ClassFactory(CreateObject<DicomDirSeries>)},
      {CLSID_DicomDirImage, ClassFactory(CreateObject<DicomDirImage>)},
  };
  for (Entry& entry : classes) {
    if (IsEqualCLSID(entry.clsid, rclsid)) return &entry.factory;
  }
  return nullptr;
}

}  // namespace halvorine
