// A host that links the platform runtime alone. It registers the built component as the
// command-line host does (dlopen and DllRegisterServer) into a registry of its own, and from then
// on reaches the classes by name through the registry, as a Windows host does. What the
// registration holds for each class is RegistrarTest's, so one class by name stands for all.
#include <halvorine/dicomdir.h>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "platform/com/TempRegistry.h"

namespace halvorine {
namespace {

bool IsLoaded() {
  void* handle = dlopen(DICOMDIR_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

// Calls an export of the component, loaded for the call only.
HRESULT CallExport(const char* name) {
  void* library = dlopen(DICOMDIR_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return E_FAIL;
  auto call = reinterpret_cast<HRESULT (*)()>(dlsym(library, name));
  const HRESULT hr = call == nullptr ? E_FAIL : call();
  dlclose(library);
  return hr;
}

// The component may carry its own copy of the C++ runtime, whose emergency pool for exceptions
// (some 73 KB) must go with the library: a host may load and unload it any number of times.
TEST(ComponentServerTest, LoadingAndUnloadingLeavesNoMemoryBehind) {
  dlclose(dlopen(DICOMDIR_LIBRARY, RTLD_NOW | RTLD_LOCAL));
  if (IsLoaded()) GTEST_SKIP() << "the loader keeps the component to the end of the process";
  const size_t before = mallinfo2().uordblks;
  constexpr int kCycles = 8;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    dlclose(dlopen(DICOMDIR_LIBRARY, RTLD_NOW | RTLD_LOCAL));
  }
  // The loader keeps some bookkeeping of its own, about a kilobyte a cycle.
  EXPECT_LT(mallinfo2().uordblks - before, kCycles * 8192u);
}

// The component is loaded only while in use, and the error records that it leaves are the host's.
TEST(ComponentServerTest, MakesAClassByNameKeepsTheComponentWhileInUseAndSharesItsErrorRecords) {
  // Whether the loader unloads the component at all once its last handle goes: a library that
  // holds STB_GNU_UNIQUE symbols (g++ without -fno-gnu-unique) stays loaded to the end of the
  // process, whatever the runtime does. Decided while nothing of the component is loaded yet.
  dlclose(dlopen(DICOMDIR_LIBRARY, RTLD_NOW | RTLD_LOCAL));
  const bool loaderUnloads = !IsLoaded();
  TempRegistry registry;
  ASSERT_EQ(CallExport("DllRegisterServer"), S_OK);
  CLSID clsid = GUID_NULL;
  ASSERT_EQ(CLSIDFromProgID(u"DicomDir.DicomDirImpl", &clsid), S_OK);
  EXPECT_TRUE(IsEqualCLSID(clsid, CLSID_DicomDirImpl));
  LPOLESTR name = nullptr;
  ASSERT_EQ(ProgIDFromCLSID(CLSID_DicomDirImpl, &name), S_OK);
  EXPECT_EQ(std::u16string(name), u"DicomDir.DicomDirImpl.1");
  CoTaskMemFree(name);
  IDicomDirImpl* service = nullptr;
  ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_ALL, IID_IDicomDirImpl,
                             reinterpret_cast<void**>(&service)),
            S_OK);
  CoFreeUnusedLibraries();
  ASSERT_TRUE(IsLoaded()) << "unloaded under a live object";

  SAFEARRAY* patients = nullptr;
  EXPECT_EQ(service->LoadDicomDir(nullptr, &patients), E_POINTER);
  IErrorInfo* record = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &record), S_OK);
  BSTR description = nullptr;
  record->GetDescription(&description);
  record->Release();
  EXPECT_EQ(std::u16string(description == nullptr ? u"(null)" : description),
            u"Unspecified directory name in the Halvorine.");
  SysFreeString(description);

  void* refused = this;
  EXPECT_EQ(
      CoCreateInstance(CLSID_DicomDirImage, service, CLSCTX_INPROC_SERVER, IID_IUnknown, &refused),
      CLASS_E_NOAGGREGATION);
  EXPECT_EQ(refused, nullptr);
  service->Release();
  CoFreeUnusedLibraries();
  if (loaderUnloads) {
    EXPECT_FALSE(IsLoaded()) << "unloaded late or not at all";
  }

  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  EXPECT_EQ(CLSIDFromProgID(u"DicomDir.DicomDirImpl", &clsid), CO_E_CLASSSTRING);
}

}  // namespace
}  // namespace halvorine
