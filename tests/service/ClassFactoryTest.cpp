#include "service/ClassFactory.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "ServiceTestSupport.h"
#include "platform/com/CountingUnknown.h"
#include "service/ModuleLock.h"

namespace halvorine {
namespace {

struct ClassCase {
  const char* name;
  const CLSID& clsid;
  const IID& iid;
  const IID& foreignIid;
};

void PrintTo(const ClassCase& c, std::ostream* os) { *os << c.name; }

class ClassFactoryTest : public ServiceTest, public testing::WithParamInterface<ClassCase> {
 protected:
  ComPtr<IClassFactory> Factory() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(DllGetClassObject(GetParam().clsid, IID_IClassFactory,
                                reinterpret_cast<void**>(factory.Receive())),
              S_OK);
    return factory;
  }
};

TEST_P(ClassFactoryTest, MakesInstancesForItsInterfaceAndUnknown) {
  ComPtr<IClassFactory> factory = Factory();
  ASSERT_TRUE(factory);
  for (const IID* iid : {&GetParam().iid, &IID_IUnknown, &IID_ISupportErrorInfo}) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(factory->CreateInstance(nullptr, *iid, reinterpret_cast<void**>(object.Receive())),
              S_OK);
    ASSERT_TRUE(object);
    EXPECT_EQ(References(object.get()), 1u) << "the caller should hold the only reference";
  }
}

TEST_P(ClassFactoryTest, DestroysAnInstanceThatLacksTheInterface) {
  ComPtr<IClassFactory> factory = Factory();
  ASSERT_TRUE(factory);
  void* object = factory.get();
  EXPECT_EQ(factory->CreateInstance(nullptr, GetParam().foreignIid, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(ModuleLock::Count(), 0);
}

TEST_P(ClassFactoryTest, RefusesAggregation) {
  ComPtr<IClassFactory> factory = Factory();
  ASSERT_TRUE(factory);
  CountingUnknown outer;
  void* object = &outer;
  EXPECT_EQ(factory->CreateInstance(&outer, GetParam().iid, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(outer.references(), 0u);
  EXPECT_EQ(ModuleLock::Count(), 0);
  EXPECT_EQ(factory->CreateInstance(nullptr, GetParam().iid, nullptr), E_POINTER);
  EXPECT_EQ(factory->CreateInstance(&outer, GetParam().iid, nullptr), E_POINTER);
}

TEST_P(ClassFactoryTest, LockServerHoldsTheModule) {
  ComPtr<IClassFactory> factory = Factory();
  ASSERT_TRUE(factory);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST_P(ClassFactoryTest, AnswersForClassFactoryAndUnknownOnly) {
  ComPtr<IClassFactory> factory = Factory();
  ASSERT_TRUE(factory);
  for (const IID* iid : {&IID_IClassFactory, &IID_IUnknown}) {
    ComPtr<IUnknown> answer;
    EXPECT_EQ(factory->QueryInterface(*iid, reinterpret_cast<void**>(answer.Receive())), S_OK);
    EXPECT_EQ(answer.get(), factory.get());
  }
  void* answer = factory.get();
  EXPECT_EQ(factory->QueryInterface(GetParam().iid, &answer), E_NOINTERFACE);
  EXPECT_EQ(answer, nullptr);
  EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

INSTANTIATE_TEST_SUITE_P(
    Classes, ClassFactoryTest,
    testing::Values(
        ClassCase{"DicomDirImpl", CLSID_DicomDirImpl, IID_IDicomDirImpl, IID_IDicomDirImage},
        ClassCase{"DicomDirPatient", CLSID_DicomDirPatient, IID_IDicomDirPatient,
                  IID_IDicomDirStudy},
        ClassCase{"DicomDirStudy", CLSID_DicomDirStudy, IID_IDicomDirStudy, IID_IDicomDirPatient},
        ClassCase{"DicomDirSeries", CLSID_DicomDirSeries, IID_IDicomDirSeries, IID_IDicomDirImpl},
        ClassCase{"DicomDirImage", CLSID_DicomDirImage, IID_IDicomDirImage, IID_IClassFactory}),
    [](const testing::TestParamInfo<ClassCase>& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace halvorine
