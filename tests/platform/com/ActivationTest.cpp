#include <halvorine/com.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "FakeServer.h"
#include "TempRegistry.h"

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
    registry_.Write(std::string(kRegistryHeader) +
                    "[HKEY_CLASSES_ROOT\\Fake.Object\\CLSID]\n"
                    "@=\"" +
                    kFakeServerObjectText + "\"\n\n" +
                    ServerKey(kFakeServerObjectText, FAKE_SERVER_PATH));
  }
  void TearDown() override {
    CoFreeUnusedLibraries();
    EXPECT_FALSE(IsLoaded(FAKE_SERVER_PATH)) << "the test left an object of the server alive";
  }

  TempRegistry registry_;
};

TEST_F(ActivationTest, KeepsTheModuleLoadedWhileAnObjectLives) {
  CLSID clsid = GUID_NULL;
  ASSERT_EQ(CLSIDFromProgID(u"Fake.Object", &clsid), S_OK);
  IUnknown* object = nullptr;
  ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(&object)),
            S_OK);
  ASSERT_NE(object, nullptr);
  EXPECT_TRUE(IsLoaded(FAKE_SERVER_PATH));
  CoFreeUnusedLibraries();
  EXPECT_TRUE(IsLoaded(FAKE_SERVER_PATH)) << "unloaded under a live object";
  object->Release();
  EXPECT_TRUE(IsLoaded(FAKE_SERVER_PATH)) << "unloaded before CoFreeUnusedLibraries";
  CoFreeUnusedLibraries();
  EXPECT_FALSE(IsLoaded(FAKE_SERVER_PATH));
}

TEST_F(ActivationTest, PassesTheServersRefusalsOnAndRefusesNullOuts) {
  void* out = this;
  // The server refuses any outer object without calling it.
  EXPECT_EQ(CoCreateInstance(CLSID_FakeServerObject, reinterpret_cast<IUnknown*>(this),
                             CLSCTX_INPROC_SERVER, IID_IUnknown, &out),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(out, nullptr);
  out = this;
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
  const std::string other = "{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}";
  const struct {
    std::string registry;
    const CLSID& clsid;
    DWORD context;
    HRESULT status;
  } cases[] = {
      {"", kOtherClass, CLSCTX_INPROC_SERVER, REGDB_E_CLASSNOTREG},
      {ServerKey(kFakeServerObjectText, FAKE_SERVER_PATH), CLSID_FakeServerObject,
       CLSCTX_LOCAL_SERVER, REGDB_E_CLASSNOTREG},
      {ServerKey(other, "/no/such/module.so"), kOtherClass, CLSCTX_INPROC_SERVER,
       HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND)},
      {ServerKey(other, HALVOCOM_PATH), kOtherClass, CLSCTX_INPROC_SERVER,
       HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND)},
      {ServerKey(other, FAKE_SERVER_PATH), kOtherClass, CLSCTX_INPROC_SERVER,
       CLASS_E_CLASSNOTAVAILABLE},
      {"garbage\n", kOtherClass, CLSCTX_INPROC_SERVER, HRESULT_FROM_WIN32(ERROR_BADDB)},
  };
  for (const auto& refusal : cases) {
    registry_.Write(std::string(kRegistryHeader) + refusal.registry);
    void* out = this;
    EXPECT_EQ(CoCreateInstance(refusal.clsid, nullptr, refusal.context, IID_IUnknown, &out),
              refusal.status)
        << refusal.registry;
    EXPECT_EQ(out, nullptr);
    out = this;
    EXPECT_EQ(CoGetClassObject(refusal.clsid, refusal.context, nullptr, IID_IClassFactory, &out),
              refusal.status)
        << refusal.registry;
    EXPECT_EQ(out, nullptr);
  }
}

}  // namespace
}  // namespace halvorine
