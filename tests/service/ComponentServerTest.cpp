// A host that links the platform runtime alone. It registers the built component as the
// command-line host does (dlopen and DllRegisterServer) into a registry of its own, and from then
// on reaches the classes by name through the registry, as a Windows host does.
#include <halvorine/dicomdir.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/com/TempRegistry.h"

namespace halvorine {
namespace {

struct NamedClass {
  const char16_t* progId;
  const char16_t* versionIndependentProgId;
  const CLSID& clsid;
  const IID& iid;
};

const NamedClass kClasses[] = {
    {u"DicomDir.DicomDirImpl.1", u"DicomDir.DicomDirImpl", CLSID_DicomDirImpl, IID_IDicomDirImpl},
    {u"DicomDir.DicomDirPatient.1", u"DicomDir.DicomDirPatient", CLSID_DicomDirPatient,
     IID_IDicomDirPatient},
    {u"DicomDir.DicomDirStudy.1", u"DicomDir.DicomDirStudy", CLSID_DicomDirStudy,
     IID_IDicomDirStudy},
    {u"DicomDir.DicomDirSeries.1", u"DicomDir.DicomDirSeries", CLSID_DicomDirSeries,
     IID_IDicomDirSeries},
    {u"DicomDir.DicomDirImage.1", u"DicomDir.DicomDirImage", CLSID_DicomDirImage,
     IID_IDicomDirImage},
};

bool IsLoaded() {
  void* handle = dlopen(DICOMDIR_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

// Whether the loader unloads the component at all once its last handle goes: a build whose
// library holds STB_GNU_UNIQUE symbols (g++ without optimisation) stays loaded to the end of the
// process, whatever the runtime does.
bool LoaderUnloadsTheComponent() {
  static const bool unloads = [] {
    dlclose(dlopen(DICOMDIR_LIBRARY, RTLD_NOW | RTLD_LOCAL));
    return !IsLoaded();
  }();
  return unloads;
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

std::u16string Text(BSTR text) {
  std::u16string copy = text == nullptr ? u"(null)" : text;
  SysFreeString(text);
  return copy;
}

class ComponentServerTest : public testing::Test {
 protected:
  // The first call decides, while nothing of the component is loaded yet.
  void SetUp() override {
    ASSERT_FALSE(LoaderUnloadsTheComponent() && IsLoaded()) << "loaded before the test";
  }
  void TearDown() override {
    CoFreeUnusedLibraries();
    if (LoaderUnloadsTheComponent()) {
      EXPECT_FALSE(IsLoaded()) << "an object of the component outlived the test";
    }
  }

  TempRegistry registry_;
};

TEST_F(ComponentServerTest, MakesEveryClassByEitherNameUntilUnregistered) {
  ASSERT_EQ(CallExport("DllRegisterServer"), S_OK);
  for (const NamedClass& named : kClasses) {
    for (const char16_t* name : {named.progId, named.versionIndependentProgId}) {
      CLSID clsid = GUID_NULL;
      ASSERT_EQ(CLSIDFromProgID(name, &clsid), S_OK);
      EXPECT_TRUE(IsEqualCLSID(clsid, named.clsid));
      IUnknown* object = nullptr;
      ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, named.iid,
                                 reinterpret_cast<void**>(&object)),
                S_OK);
      ASSERT_NE(object, nullptr);
      ISupportErrorInfo* errorInfo = nullptr;
      ASSERT_EQ(object->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&errorInfo)),
                S_OK);
      EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(named.iid), S_OK);
      errorInfo->Release();
      object->Release();
    }
    LPOLESTR progId = nullptr;
    ASSERT_EQ(ProgIDFromCLSID(named.clsid, &progId), S_OK);
    EXPECT_EQ(std::u16string(progId), named.progId);
    CoTaskMemFree(progId);
  }

  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  for (const NamedClass& named : kClasses) {
    void* object = this;
    EXPECT_EQ(CoCreateInstance(named.clsid, nullptr, CLSCTX_INPROC_SERVER, named.iid, &object),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    CLSID clsid = GUID_NULL;
    EXPECT_EQ(CLSIDFromProgID(named.versionIndependentProgId, &clsid), CO_E_CLASSSTRING);
  }
}

TEST_F(ComponentServerTest, KeepsTheComponentWhileInUseAndNamesItInErrorRecords) {
  ASSERT_EQ(CallExport("DllRegisterServer"), S_OK);
  IDicomDirImpl* service = nullptr;
  ASSERT_EQ(CoCreateInstance(CLSID_DicomDirImpl, nullptr, CLSCTX_ALL, IID_IDicomDirImpl,
                             reinterpret_cast<void**>(&service)),
            S_OK);
  CoFreeUnusedLibraries();
  ASSERT_TRUE(IsLoaded()) << "unloaded under a live object";

  SAFEARRAY* patients = nullptr;
  EXPECT_EQ(service->LoadDicomDir(nullptr, &patients), E_POINTER);
  IErrorInfo* record = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &record), S_OK);
  BSTR source = nullptr;
  BSTR description = nullptr;
  record->GetSource(&source);
  record->GetDescription(&description);
  record->Release();
  EXPECT_EQ(Text(source), u"DicomDir.DicomDirImpl.1");
  EXPECT_EQ(Text(description), u"Unspecified directory name in the Halvorine.");

  void* refused = this;
  EXPECT_EQ(
      CoCreateInstance(CLSID_DicomDirImage, service, CLSCTX_INPROC_SERVER, IID_IUnknown, &refused),
      CLASS_E_NOAGGREGATION);
  EXPECT_EQ(refused, nullptr);
  service->Release();
}

}  // namespace
}  // namespace halvorine
