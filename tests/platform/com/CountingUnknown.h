// An IUnknown held by the test itself, which counts its references so that a test sees every
// AddRef and Release that a runtime call makes on it. Release never deletes it. References reads
// the count of any object.
#ifndef HALVORINE_TESTS_PLATFORM_COM_COUNTINGUNKNOWN_H
#define HALVORINE_TESTS_PLATFORM_COM_COUNTINGUNKNOWN_H

#include <halvorine/com.h>

#include <atomic>

namespace halvorine {

// The references that any object holds now.
inline ULONG References(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

class CountingUnknown final : public IUnknown {
 public:
  // No call under test asks it for an interface.
  HRESULT QueryInterface(REFIID, void** ppvObject) override {
    *ppvObject = nullptr;
    return E_NOINTERFACE;
  }
  ULONG AddRef() override { return ++references_; }
  ULONG Release() override { return --references_; }
  ULONG references() const { return references_; }

 private:
  std::atomic<ULONG> references_{0};
};

}  // namespace halvorine

#endif  // HALVORINE_TESTS_PLATFORM_COM_COUNTINGUNKNOWN_H
