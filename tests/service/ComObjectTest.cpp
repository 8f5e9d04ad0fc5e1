#include "service/ComObject.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <vector>

#include "ServiceTestSupport.h"
#include "platform/com/CountingUnknown.h"
#include "service/ModuleLock.h"

namespace halvorine {
namespace {

class ComObjectTest : public ServiceTest, public testing::WithParamInterface<ClassCase> {};

// One identity behind IUnknown, its own interface and ISupportErrorInfo, each answer adding a
// reference; every other interface refused with a null out.
TEST_P(ComObjectTest, AnswersForItsOwnInterfaceErrorInfoAndUnknownOnly) {
  ComPtr<IUnknown> object;
  MakeObject(GetParam().clsid, GetParam().iid, reinterpret_cast<void**>(object.Receive()));
  ASSERT_TRUE(object);
  ComPtr<ISupportErrorInfo> errorInfo;
  ASSERT_EQ(
      object->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(errorInfo.Receive())),
      S_OK);
  for (const IID* iid : {&IID_IUnknown, &GetParam().iid}) {
    ComPtr<IUnknown> answer;
    ASSERT_EQ(errorInfo->QueryInterface(*iid, reinterpret_cast<void**>(answer.Receive())), S_OK);
    EXPECT_EQ(answer.get(), object.get());
    EXPECT_EQ(References(object.get()), 3u);
  }
  std::vector<const IID*> others = {&IID_IClassFactory, &IID_IErrorInfo, &GUID_NULL};
  for (const ClassCase& other : kClasses) {
    if (&other.iid != &GetParam().iid) others.push_back(&other.iid);
    EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(other.iid),
              &other.iid == &GetParam().iid ? S_OK : S_FALSE)
        << other.name;
  }
  EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(IID_IUnknown), S_FALSE);
  for (const IID* iid : others) {
    void* answer = object.get();
    EXPECT_EQ(object->QueryInterface(*iid, &answer), E_NOINTERFACE);
    EXPECT_EQ(answer, nullptr);
  }
  EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(References(object.get()), 2u);
}

TEST_P(ComObjectTest, CountsReferencesAndHoldsTheModuleWhileAlive) {
  ComPtr<IUnknown> object, second;
  MakeObject(GetParam().clsid, IID_IUnknown, reinterpret_cast<void**>(object.Receive()));
  ASSERT_TRUE(object);
  EXPECT_EQ(ModuleLock::Count(), 1);
  EXPECT_EQ(object->AddRef(), 2u);
  EXPECT_EQ(object->Release(), 1u);
  MakeObject(GetParam().clsid, IID_IUnknown, reinterpret_cast<void**>(second.Receive()));
  EXPECT_EQ(ModuleLock::Count(), 2);
  EXPECT_EQ(object.Detach()->Release(), 0u);
  EXPECT_EQ(ModuleLock::Count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Classes, ComObjectTest, testing::ValuesIn(kClasses), ClassName);

}  // namespace
}  // namespace halvorine
