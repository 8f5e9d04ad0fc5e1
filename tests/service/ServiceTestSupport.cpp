#include "ServiceTestSupport.h"

#include <memory>

#include "platform/com/TempRegistry.h"

namespace halvorine {
namespace {

// The tests see a registry of their own, empty unless a test registers the component into one of
// its own, so that no registration on the machine changes what they read.
class EmptyRegistry : public testing::Environment {
 public:
  void SetUp() override { registry_ = std::make_unique<TempRegistry>(); }
  void TearDown() override { registry_.reset(); }

 private:
  std::unique_ptr<TempRegistry> registry_;
};

[[maybe_unused]] testing::Environment* const emptyRegistry =
    testing::AddGlobalTestEnvironment(new EmptyRegistry);

}  // namespace

void MakeObject(REFCLSID clsid, REFIID riid, void** out) {
  *out = nullptr;
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(
      DllGetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Receive())),
      S_OK);
  if (factory) {
    EXPECT_EQ(factory->CreateInstance(nullptr, riid, out), S_OK);
  }
}

ULONG References(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

BString Text(std::u16string_view text) { return BString::Copy(text); }

SafeArrayPtr ArrayOf(std::initializer_list<IUnknown*> elements, LONG lower) {
  SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, lower, static_cast<ULONG>(elements.size())));
  EXPECT_NE(array.get(), nullptr);
  LONG index = lower;
  for (IUnknown* element : elements) {
    EXPECT_EQ(SafeArrayPutElement(array.get(), &index, element), S_OK);
    ++index;
  }
  return array;
}

std::vector<IUnknown*> Elements(SAFEARRAY* array) {
  std::vector<IUnknown*> elements;
  LONG lower = 0;
  LONG upper = -1;
  EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
  for (LONG index = lower; index <= upper; ++index) {
    ComPtr<IUnknown> element;
    EXPECT_EQ(SafeArrayGetElement(array, &index, element.Receive()), S_OK);
    elements.push_back(element.get());
  }
  return elements;
}

std::u16string TakeFailureDescription() {
  ComPtr<IErrorInfo> record;
  if (GetErrorInfo(0, record.Receive()) != S_OK || !record) return u"(none)";
  GUID guid = GUID_NULL;
  BString source;
  BString description;
  BString helpFile;
  DWORD helpContext = 1;
  EXPECT_EQ(record->GetGUID(&guid), S_OK);
  EXPECT_EQ(record->GetSource(source.Receive()), S_OK);
  EXPECT_EQ(record->GetDescription(description.Receive()), S_OK);
  EXPECT_EQ(record->GetHelpFile(helpFile.Receive()), S_OK);
  EXPECT_EQ(record->GetHelpContext(&helpContext), S_OK);
  EXPECT_TRUE(IsEqualGUID(guid, IID_IDicomDirImpl));
  EXPECT_TRUE(source.IsNull()) << "a source while the class isn't registered";
  EXPECT_TRUE(helpFile.IsNull());
  EXPECT_EQ(helpContext, 0u);
  return std::u16string(description.View());
}

void ServiceTest::TearDown() {
  EXPECT_EQ(DllCanUnloadNow(), S_OK) << "an object of the component outlived its test";
}

}  // namespace halvorine
