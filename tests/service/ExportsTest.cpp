#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <set>

#include "ServiceTestSupport.h"
#include "platform/com/CountingUnknown.h"
#include "service/ModuleLock.h"

// The exports and the class objects they hand out; the registration exports are RegistrarTest's,
// and what an instance answers for, made by its class object with the caller's one reference, is
// ComObjectTest's. The class objects differ only in the class they make, so the rest of their
// behaviour is shown on one.
namespace halvorine {
namespace {

using ExportsTest = ServiceTest;

TEST_F(ExportsTest, GivesOneLastingClassObjectPerClass) {
  std::set<IClassFactory*> factories;
  for (const ClassCase& c : kClasses) {
    SCOPED_TRACE(c.name);
    ComPtr<IClassFactory> factory;
    void* again = nullptr;
    ASSERT_EQ(
        DllGetClassObject(c.clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Receive())),
        S_OK);
    ASSERT_EQ(DllGetClassObject(c.clsid, IID_IUnknown, &again), S_OK);
    EXPECT_EQ(again, factory.get());
    static_cast<IUnknown*>(again)->Release();
    factories.insert(factory.get());
    void* out = this;
    EXPECT_EQ(DllGetClassObject(c.clsid, c.iid, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
  }
  EXPECT_EQ(factories.size(), std::size(kClasses));
  for (const CLSID* clsid : {&GUID_NULL, &IID_IDicomDirImpl, &IID_IUnknown}) {
    void* out = this;
    EXPECT_EQ(DllGetClassObject(*clsid, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
  }
  EXPECT_EQ(DllGetClassObject(CLSID_DicomDirImage, IID_IClassFactory, nullptr), E_POINTER);
}

// A refused instance is destroyed at once; an outer object is never touched; a class object
// alone doesn't hold the module, but a lock does.
TEST_F(ExportsTest, AClassObjectRefusesForeignInterfacesAggregationAndNullOuts) {
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(DllGetClassObject(CLSID_DicomDirImage, IID_IClassFactory,
                              reinterpret_cast<void**>(factory.Receive())),
            S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
  void* object = this;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDicomDirImpl, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(ModuleLock::Count(), 0) << "the refused instance wasn't destroyed";
  CountingUnknown outer;
  object = this;
  EXPECT_EQ(factory->CreateInstance(&outer, IID_IDicomDirImage, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(outer.references(), 0u);
  EXPECT_EQ(ModuleLock::Count(), 0);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDicomDirImage, nullptr), E_POINTER);
  EXPECT_EQ(factory->CreateInstance(&outer, IID_IDicomDirImage, nullptr), E_POINTER);
  EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST_F(ExportsTest, CreateUnregisteredComInstanceMakesTheServiceOnly) {
  for (const IID* iid : {&IID_IDicomDirImpl, &IID_IUnknown, &IID_ISupportErrorInfo}) {
    ComPtr<IUnknown> object;
    ASSERT_EQ(CreateUnregisteredComInstance(reinterpret_cast<void**>(object.Receive()), *iid),
              S_OK);
    ComPtr<IDicomDirImpl> service;
    EXPECT_EQ(
        object->QueryInterface(IID_IDicomDirImpl, reinterpret_cast<void**>(service.Receive())),
        S_OK);
    EXPECT_EQ(ModuleLock::Count(), 1);
  }
  void* out = this;
  EXPECT_EQ(CreateUnregisteredComInstance(&out, IID_IDicomDirPatient), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(ModuleLock::Count(), 0) << "the refused object wasn't destroyed";
  EXPECT_EQ(CreateUnregisteredComInstance(nullptr, IID_IDicomDirImpl), E_POINTER);
}

}  // namespace
}  // namespace halvorine
