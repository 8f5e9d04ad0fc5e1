#ifndef HALVORINE_SERVICE_COMOBJECT_H
#define HALVORINE_SERVICE_COMOBJECT_H

#include <halvorine/com.h>

#include <atomic>
#include <new>

#include "service/ModuleLock.h"

namespace halvorine {

// The root of the five classes: an atomic reference count, the module lock that every live
// object holds, and the answers to IUnknown and ISupportErrorInfo. Interface is the class's own
// interface, kIid its identifier. An object starts with no reference; Create gives the first.
template <class Interface, const IID& kIid>
class ComObject : public Interface, public ISupportErrorInfo {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT QueryInterface(REFIID riid, void** ppvObject) override {
    if (ppvObject == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, kIid)) {
      *ppvObject = static_cast<Interface*>(this);
    } else if (IsEqualIID(riid, IID_ISupportErrorInfo)) {
      *ppvObject = static_cast<ISupportErrorInfo*>(this);
    } else {
      *ppvObject = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT InterfaceSupportsErrorInfo(REFIID riid) override {
    return IsEqualIID(riid, kIid) ? S_OK : S_FALSE;
  }

 protected:
  ComObject() { ModuleLock::Lock(); }
  virtual ~ComObject() { ModuleLock::Unlock(); }

 private:
  std::atomic<ULONG> references_{0};
};

// Makes a T and asks it for riid. The object lives inside a temporary reference of its own, so
// a failed query destroys it again; *ppv is null then.
template <class T>
HRESULT CreateObject(REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  T* object = new (std::nothrow) T;
  if (object == nullptr) return E_OUTOFMEMORY;
  object->AddRef();
  const HRESULT hr = object->QueryInterface(riid, ppv);
  object->Release();
  return hr;
}

// Makes a T with one reference for *object and lets fill store into it; fill tells whether memory
// sufficed, and when it didn't the object goes again.
template <class T, class Interface, class Fill>
HRESULT CreateFilledObject(Interface** object, Fill fill) {
  *object = nullptr;
  T* made = new (std::nothrow) T;
  if (made == nullptr) return E_OUTOFMEMORY;
  made->AddRef();
  if (!fill(*made)) {
    made->Release();
    return E_OUTOFMEMORY;
  }
  *object = made;
  return S_OK;
}

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_COMOBJECT_H
