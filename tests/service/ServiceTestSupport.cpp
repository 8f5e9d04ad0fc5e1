#include "ServiceTestSupport.h"

#include "platform/com/TempRegistry.h"

namespace halvorine {
namespace {

// The tests see a registry of their own, empty unless a test registers the component into one of
// its own, so that no registration on the machine changes what they read.
const TempRegistry emptyRegistry;

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

BString Text(std::u16string_view text) { return BString::Copy(text); }

SafeArrayPtr ArrayOfSize(ULONG count, LONG lower) {
  SafeArrayPtr array(SafeArrayCreateVector(VT_UNKNOWN, lower, count));
  EXPECT_NE(array.get(), nullptr);
  return array;
}

void Put(const SafeArrayPtr& array, LONG index, IUnknown* element) {
  EXPECT_EQ(SafeArrayPutElement(array.get(), &index, element), S_OK);
}

SafeArrayPtr ArrayOf(std::initializer_list<IUnknown*> elements) {
  SafeArrayPtr array = ArrayOfSize(static_cast<ULONG>(elements.size()));
  for (LONG index = 0; IUnknown * element : elements) Put(array, index++, element);
  return array;
}

std::u16string TakeFailureDescription(std::u16string_view expectedSource) {
  ComPtr<IErrorInfo> record;
  if (GetErrorInfo(0, record.Receive()) != S_OK || !record) return u"(none)";
  GUID guid = GUID_NULL;
  BString source, description, helpFile;
  DWORD helpContext = 1;
  EXPECT_EQ(record->GetGUID(&guid), S_OK);
  EXPECT_EQ(record->GetSource(source.Receive()), S_OK);
  EXPECT_EQ(record->GetDescription(description.Receive()), S_OK);
  EXPECT_EQ(record->GetHelpFile(helpFile.Receive()), S_OK);
  EXPECT_EQ(record->GetHelpContext(&helpContext), S_OK);
  EXPECT_TRUE(IsEqualGUID(guid, IID_IDicomDirImpl));
  EXPECT_EQ(source.IsNull() ? u"(null)" : source.View(), expectedSource);
  EXPECT_TRUE(helpFile.IsNull());
  EXPECT_EQ(helpContext, 0u);
  return std::u16string(description.View());
}

void ServiceTest::TearDown() {
  EXPECT_EQ(DllCanUnloadNow(), S_OK) << "an object of the component outlived its test";
}

}  // namespace halvorine
