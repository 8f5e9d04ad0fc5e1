#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <set>

#include "ServiceTestSupport.h"
#include "service/ModuleLock.h"

namespace halvorine {
namespace {

using ExportsTest = ServiceTest;

const CLSID* const kClasses[] = {&CLSID_DicomDirImpl, &CLSID_DicomDirPatient, &CLSID_DicomDirStudy,
                                 &CLSID_DicomDirSeries, &CLSID_DicomDirImage};

TEST_F(ExportsTest, GivesOneLastingClassObjectPerClass) {
  std::set<void*> factories;
  for (const CLSID* clsid : kClasses) {
    void* first = nullptr;
    void* again = nullptr;
    ASSERT_EQ(DllGetClassObject(*clsid, IID_IClassFactory, &first), S_OK);
    ASSERT_EQ(DllGetClassObject(*clsid, IID_IUnknown, &again), S_OK);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, again);
    factories.insert(first);
    static_cast<IUnknown*>(first)->Release();
    static_cast<IUnknown*>(again)->Release();
  }
  EXPECT_EQ(factories.size(), std::size(kClasses));
  EXPECT_EQ(DllCanUnloadNow(), S_OK) << "a class object alone holds the module";
}

TEST_F(ExportsTest, RefusesUnknownClassesInterfacesAndNullOuts) {
  const CLSID* const unknown[] = {&GUID_NULL, &IID_IDicomDirImpl, &IID_IUnknown};
  for (const CLSID* clsid : unknown) {
    void* out = this;
    EXPECT_EQ(DllGetClassObject(*clsid, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(*clsid, IID_IClassFactory, nullptr), E_POINTER);
  }
  void* out = this;
  EXPECT_EQ(DllGetClassObject(CLSID_DicomDirImage, IID_IDicomDirImage, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(DllGetClassObject(CLSID_DicomDirImage, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(ExportsTest, CanUnloadOnlyWhenNoObjectLives) {
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
  ComPtr<IDicomDirImage> image = Make<IDicomDirImage>();
  ComPtr<IDicomDirImpl> service = Make<IDicomDirImpl>();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  image = ComPtr<IDicomDirImage>();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  service = ComPtr<IDicomDirImpl>();
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST_F(ExportsTest, CreateUnregisteredComInstanceMakesTheService) {
  for (const IID* iid : {&IID_IDicomDirImpl, &IID_IUnknown, &IID_ISupportErrorInfo}) {
    ComPtr<IUnknown> object;
    ASSERT_EQ(CreateUnregisteredComInstance(reinterpret_cast<void**>(object.Receive()), *iid),
              S_OK);
    ASSERT_TRUE(object);
    ComPtr<IDicomDirImpl> service;
    EXPECT_EQ(
        object->QueryInterface(IID_IDicomDirImpl, reinterpret_cast<void**>(service.Receive())),
        S_OK);
    EXPECT_EQ(ModuleLock::Count(), 1);
  }
}

TEST_F(ExportsTest, CreateUnregisteredComInstanceRefusesWhatItCantGive) {
  void* out = this;
  EXPECT_EQ(CreateUnregisteredComInstance(&out, IID_IDicomDirPatient), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(ModuleLock::Count(), 0) << "the refused object wasn't destroyed";
  EXPECT_EQ(CreateUnregisteredComInstance(nullptr, IID_IDicomDirImpl), E_POINTER);
}

}  // namespace
}  // namespace halvorine
