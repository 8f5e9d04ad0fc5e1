#include "service/ComObject.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <vector>

#include "ServiceTestSupport.h"
#include "service/ModuleLock.h"

namespace halvorine {
namespace {

class ComObjectTest : public ServiceTest, public testing::WithParamInterface<ClassCase> {
 protected:
  ComPtr<IUnknown> MakeOwn() {
    ComPtr<IUnknown> object;
    MakeObject(GetParam().clsid, GetParam().iid, reinterpret_cast<void**>(object.Receive()));
    return object;
  }
};

TEST_P(ComObjectTest, AnswersForItsOwnInterfaceErrorInfoAndUnknown) {
  ComPtr<IUnknown> object = MakeOwn();
  ASSERT_TRUE(object);
  ComPtr<IUnknown> identity;
  ASSERT_EQ(object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.Receive())),
            S_OK);
  EXPECT_EQ(identity.get(), object.get());

  ComPtr<ISupportErrorInfo> errorInfo;
  ASSERT_EQ(
      object->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(errorInfo.Receive())),
      S_OK);
  ComPtr<IUnknown> back;
  ASSERT_EQ(errorInfo->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(back.Receive())),
            S_OK);
  EXPECT_EQ(back.get(), object.get()) << "IUnknown through ISupportErrorInfo is another object";
  ComPtr<IUnknown> own;
  EXPECT_EQ(errorInfo->QueryInterface(GetParam().iid, reinterpret_cast<void**>(own.Receive())),
            S_OK);
  EXPECT_EQ(own.get(), object.get());
  EXPECT_EQ(References(object.get()), 5u);
}

TEST_P(ComObjectTest, RefusesEveryOtherInterface) {
  ComPtr<IUnknown> object = MakeOwn();
  ASSERT_TRUE(object);
  std::vector<const IID*> others = {&IID_IClassFactory, &IID_IErrorInfo, &GUID_NULL};
  for (const ClassCase& other : kClasses) {
    if (&other.iid != &GetParam().iid) others.push_back(&other.iid);
  }
  for (const IID* iid : others) {
    void* answer = object.get();
    EXPECT_EQ(object->QueryInterface(*iid, &answer), E_NOINTERFACE);
    EXPECT_EQ(answer, nullptr);
  }
  EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(References(object.get()), 1u);
}

TEST_P(ComObjectTest, SupportsErrorInfoForItsOwnInterfaceOnly) {
  ComPtr<IUnknown> object = MakeOwn();
  ComPtr<ISupportErrorInfo> errorInfo;
  ASSERT_EQ(
      object->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(errorInfo.Receive())),
      S_OK);
  for (const ClassCase& any : kClasses) {
    const HRESULT expected = &any.iid == &GetParam().iid ? S_OK : S_FALSE;
    EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(any.iid), expected) << any.name;
  }
  EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(IID_IUnknown), S_FALSE);
}

TEST_P(ComObjectTest, CountsReferencesAndHoldsTheModuleWhileAlive) {
  ComPtr<IUnknown> object = MakeOwn();
  ASSERT_TRUE(object);
  EXPECT_EQ(ModuleLock::Count(), 1);
  EXPECT_EQ(object->AddRef(), 2u);
  EXPECT_EQ(object->Release(), 1u);
  ComPtr<IUnknown> second = MakeOwn();
  EXPECT_EQ(ModuleLock::Count(), 2);
  EXPECT_EQ(object.Detach()->Release(), 0u);
  EXPECT_EQ(ModuleLock::Count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Classes, ComObjectTest, testing::ValuesIn(kClasses), ClassName);

}  // namespace
}  // namespace halvorine
