#include "service/ClassFactory.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include "ServiceTestSupport.h"
#include "platform/com/CountingUnknown.h"
#include "service/ModuleLock.h"

namespace halvorine {
namespace {

class ClassFactoryTest : public ServiceTest, public testing::WithParamInterface<ClassCase> {
 protected:
  void SetUp() override {
    ASSERT_EQ(DllGetClassObject(GetParam().clsid, IID_IClassFactory,
                                reinterpret_cast<void**>(factory_.Receive())),
              S_OK);
  }
  void TearDown() override {
    factory_ = ComPtr<IClassFactory>();
    ServiceTest::TearDown();
  }
  // Another class's interface.
  const IID& Foreign() const {
    return (&GetParam().iid == &kClasses[0].iid ? kClasses[4] : kClasses[0]).iid;
  }

  ComPtr<IClassFactory> factory_;
};

TEST_P(ClassFactoryTest, MakesInstancesForItsInterfaceAndUnknownOnly) {
  for (const IID* iid : {&GetParam().iid, &IID_IUnknown, &IID_ISupportErrorInfo}) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(factory_->CreateInstance(nullptr, *iid, reinterpret_cast<void**>(object.Receive())),
              S_OK);
    ASSERT_TRUE(object);
    EXPECT_EQ(References(object.get()), 1u) << "the caller should hold the only reference";
  }
  void* object = factory_.get();
  EXPECT_EQ(factory_->CreateInstance(nullptr, Foreign(), &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(ModuleLock::Count(), 0) << "the refused instance wasn't destroyed";
}

TEST_P(ClassFactoryTest, RefusesAggregationAndNullOuts) {
  CountingUnknown outer;
  void* object = &outer;
  EXPECT_EQ(factory_->CreateInstance(&outer, GetParam().iid, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(outer.references(), 0u);
  EXPECT_EQ(ModuleLock::Count(), 0);
  EXPECT_EQ(factory_->CreateInstance(nullptr, GetParam().iid, nullptr), E_POINTER);
  EXPECT_EQ(factory_->CreateInstance(&outer, GetParam().iid, nullptr), E_POINTER);
}

TEST_P(ClassFactoryTest, LockServerHoldsTheModule) {
  EXPECT_EQ(factory_->LockServer(TRUE), S_OK);
  EXPECT_EQ(factory_->LockServer(TRUE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory_->LockServer(FALSE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory_->LockServer(FALSE), S_OK);
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST_P(ClassFactoryTest, AnswersForClassFactoryAndUnknownOnly) {
  for (const IID* iid : {&IID_IClassFactory, &IID_IUnknown}) {
    ComPtr<IUnknown> answer;
    EXPECT_EQ(factory_->QueryInterface(*iid, reinterpret_cast<void**>(answer.Receive())), S_OK);
    EXPECT_EQ(answer.get(), factory_.get());
  }
  void* answer = factory_.get();
  EXPECT_EQ(factory_->QueryInterface(GetParam().iid, &answer), E_NOINTERFACE);
  EXPECT_EQ(answer, nullptr);
  EXPECT_EQ(factory_->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

INSTANTIATE_TEST_SUITE_P(Classes, ClassFactoryTest, testing::ValuesIn(kClasses), ClassName);

}  // namespace
}  // namespace halvorine
