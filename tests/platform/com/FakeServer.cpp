#include "FakeServer.h"

#include <atomic>

#define FAKE_SERVER_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

std::atomic<LONG> liveObjects{0};

class FakeObject final : public IUnknown {
 public:
  FakeObject() { ++liveObjects; }

  HRESULT QueryInterface(REFIID riid, void** ppvObject) override {
    *ppvObject = IsEqualIID(riid, IID_IUnknown) ? this : nullptr;
    return *ppvObject == nullptr ? E_NOINTERFACE : (AddRef(), S_OK);
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  ~FakeObject() { --liveObjects; }
  std::atomic<ULONG> references_{1};
};

// Lives as long as the module.
class FakeFactory final : public IClassFactory {
 public:
  HRESULT QueryInterface(REFIID riid, void** ppvObject) override {
    const bool known = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory);
    *ppvObject = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG AddRef() override { return 2; }
  ULONG Release() override { return 1; }
  HRESULT CreateInstance(IUnknown*, REFIID riid, void** ppvObject) override {
    auto* object = new FakeObject;
    const HRESULT hr = object->QueryInterface(riid, ppvObject);
    object->Release();
    return hr;
  }
  HRESULT LockServer(BOOL) override { return S_OK; }
};

FakeFactory factory;

}  // namespace

FAKE_SERVER_EXPORT HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv) {
  if (!IsEqualCLSID(rclsid, CLSID_FakeServerObject)) return CLASS_E_CLASSNOTAVAILABLE;
  return factory.QueryInterface(riid, ppv);
}

FAKE_SERVER_EXPORT HRESULT DllCanUnloadNow() { return liveObjects == 0 ? S_OK : S_FALSE; }
