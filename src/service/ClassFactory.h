#ifndef HALVORINE_SERVICE_CLASSFACTORY_H
#define HALVORINE_SERVICE_CLASSFACTORY_H

#include <halvorine/com.h>

namespace halvorine {

// The class object of one of the five classes: made at the first request and kept for the
// process, so its reference count never destroys it. Aggregation is refused.
class ClassFactory final : public IClassFactory {
 public:
  using Creator = HRESULT (*)(REFIID riid, void** ppv);
  explicit ClassFactory(Creator creator) : creator_(creator) {}

  HRESULT QueryInterface(REFIID riid, void** ppvObject) override;
  ULONG AddRef() override { return 2; }
  ULONG Release() override { return 1; }
  HRESULT CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppvObject) override;
  HRESULT LockServer(BOOL fLock) override;

 private:
  Creator creator_;
};

// The class object for rclsid, or null for a class that isn't one of the five.
ClassFactory* FindClassFactory(REFCLSID rclsid);

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_CLASSFACTORY_H
