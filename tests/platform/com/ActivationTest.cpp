#include <halvorine/com.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "FakeServer.h"
#include "TempRegistry.h"

// Aggregation's refusal passing through is shown with the component itself (tests/service).
namespace halvorine {
namespace {

// {0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}
constexpr CLSID kOtherClass = {
    0x0F1E2D3C, 0x4B5A, 0x6978, {0x87, 0x96, 0xA5, 0xB4, 0xC3, 0xD2, 0xE1, 0xF0}};

std::string ServerKey(const std::string& clsid, const std::string& module) {
  return "[HKEY_CLASSES_ROOT\\CLSID\\" + clsid + "\\InprocServer32]\n@=\"" + module + "\"\n\n";
}

bool IsLoaded(const char* module) {
  void* handle = dlopen(module, RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

class ActivationTest : public testing::Test {
 protected:
  void SetUp() override {
    registry_.Write(kRegistryHeader + ServerKey(kFakeServerObjectText, FAKE_SERVER_PATH));
  }
  void TearDown() override {
    CoFreeUnusedLibraries();
    EXPECT_FALSE(IsLoaded(FAKE_SERVER_PATH)) << "the test left an object of the server alive";
  }

  TempRegistry registry_;
};

// The server's own refusal and the runtime's of null outs come back with a null out.
TEST_F(ActivationTest, KeepsTheModuleLoadedWhileAnObjectLivesAndPassesRefusalsOn) {
  IUnknown* object = nullptr;
  ASSERT_EQ(CoCreateInstance(CLSID_FakeServerObject, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(&object)),
            S_OK);
  ASSERT_NE(object, nullptr);
  CoFreeUnusedLibraries();
  EXPECT_TRUE(IsLoaded(FAKE_SERVER_PATH)) << "unloaded under a live object";
  object->Release();
  EXPECT_TRUE(IsLoaded(FAKE_SERVER_PATH)) << "unloaded before CoFreeUnusedLibraries";
  CoFreeUnusedLibraries();
  EXPECT_FALSE(IsLoaded(FAKE_SERVER_PATH));

  void* out = this;
  EXPECT_EQ(CoCreateInstance(CLSID_FakeServerObject, nullptr, CLSCTX_INPROC_SERVER,
                             IID_IClassFactory, &out),
            E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(CoCreateInstance(CLSID_FakeServerObject, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                             nullptr),
            E_POINTER);
  EXPECT_EQ(CoGetClassObject(CLSID_FakeServerObject, CLSCTX_INPROC_SERVER, nullptr,
                             IID_IClassFactory, nullptr),
            E_INVALIDARG);
}

TEST_F(ActivationTest, RefusesWithTheStatusOfWindows) {
  const auto other = [](const std::string& module) {
    return ServerKey("{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}", module);
  };
  const std::string fake = ServerKey(kFakeServerObjectText, FAKE_SERVER_PATH);
  const struct {
    std::string registry;
    const CLSID& clsid;
    DWORD context;
    HRESULT status;
  } cases[] = {
      {"", kOtherClass, CLSCTX_INPROC_SERVER, REGDB_E_CLASSNOTREG},
      {fake, CLSID_FakeServerObject, CLSCTX_LOCAL_SERVER, REGDB_E_CLASSNOTREG},
      {other("/no/such/module.so"), kOtherClass, CLSCTX_INPROC_SERVER,
       HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND)},
      {other(HALVOCOM_PATH), kOtherClass, CLSCTX_INPROC_SERVER,
       HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND)},
      {other(FAKE_SERVER_PATH), kOtherClass, CLSCTX_INPROC_SERVER, CLASS_E_CLASSNOTAVAILABLE},
      {"garbage\n", kOtherClass, CLSCTX_INPROC_SERVER, HRESULT_FROM_WIN32(ERROR_BADDB)},
  };
  for (const auto& refusal : cases) {
    SCOPED_TRACE(refusal.registry);
    registry_.Write(kRegistryHeader + refusal.registry);
    void* out = this;
    EXPECT_EQ(CoCreateInstance(refusal.clsid, nullptr, refusal.context, IID_IUnknown, &out),
              refusal.status);
    EXPECT_EQ(out, nullptr);
    out = this;
    EXPECT_EQ(CoGetClassObject(refusal.clsid, refusal.context, nullptr, IID_IClassFactory, &out),
              refusal.status);
    EXPECT_EQ(out, nullptr);
  }
}

}  // namespace
}  // namespace halvorine
