#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

constexpr GUID kSomeGuid = {
    0x28E31A13, 0x2D2D, 0x430E, {0xA8, 0xD2, 0x95, 0xB3, 0x5B, 0x0F, 0xD8, 0x51}};

// The references that p holds now.
ULONG References(IUnknown* p) {
  p->AddRef();
  return p->Release();
}

// Makes a record through ICreateErrorInfo and gives its IErrorInfo, with one reference.
IErrorInfo* MakeRecord(const char16_t* description) {
  ICreateErrorInfo* creator = nullptr;
  EXPECT_EQ(CreateErrorInfo(&creator), S_OK);
  if (creator == nullptr) return nullptr;
  creator->SetDescription(const_cast<LPOLESTR>(description));
  IErrorInfo* record = nullptr;
  EXPECT_EQ(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&record)), S_OK);
  creator->Release();
  return record;
}

std::u16string Description(IErrorInfo* record) {
  BSTR text = nullptr;
  EXPECT_EQ(record->GetDescription(&text), S_OK);
  std::u16string copy = text == nullptr ? u"(null)" : text;
  SysFreeString(text);
  return copy;
}

TEST(ErrorInfo, ReadsBackWhatWasSet) {
  ICreateErrorInfo* creator = nullptr;
  ASSERT_EQ(CreateErrorInfo(&creator), S_OK);
  ASSERT_NE(creator, nullptr);
  EXPECT_EQ(creator->SetGUID(kSomeGuid), S_OK);
  EXPECT_EQ(creator->SetSource(const_cast<LPOLESTR>(u"DicomDir.DicomDirImpl.1")), S_OK);
  EXPECT_EQ(creator->SetDescription(const_cast<LPOLESTR>(u"first")), S_OK);
  EXPECT_EQ(creator->SetDescription(const_cast<LPOLESTR>(u"second")), S_OK);
  EXPECT_EQ(creator->SetHelpFile(const_cast<LPOLESTR>(u"help.chm")), S_OK);
  EXPECT_EQ(creator->SetHelpContext(42), S_OK);
  IErrorInfo* record = nullptr;
  ASSERT_EQ(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&record)), S_OK);
  creator->Release();

  GUID guid = GUID_NULL;
  EXPECT_EQ(record->GetGUID(&guid), S_OK);
  EXPECT_TRUE(IsEqualGUID(guid, kSomeGuid));
  BSTR source = nullptr;
  BSTR helpFile = nullptr;
  EXPECT_EQ(record->GetSource(&source), S_OK);
  EXPECT_EQ(record->GetHelpFile(&helpFile), S_OK);
  EXPECT_EQ(std::u16string(source), u"DicomDir.DicomDirImpl.1");
  EXPECT_EQ(std::u16string(helpFile), u"help.chm");
  EXPECT_EQ(Description(record), u"second");
  DWORD context = 0;
  EXPECT_EQ(record->GetHelpContext(&context), S_OK);
  EXPECT_EQ(context, 42u);
  SysFreeString(source);
  SysFreeString(helpFile);
  EXPECT_EQ(record->Release(), 0u);
}

TEST(ErrorInfo, FieldsNeverSetAreNullAndZero) {
  ICreateErrorInfo* creator = nullptr;
  ASSERT_EQ(CreateErrorInfo(&creator), S_OK);
  IErrorInfo* record = nullptr;
  ASSERT_EQ(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&record)), S_OK);
  creator->Release();
  GUID guid = kSomeGuid;
  char16_t sentinel[] = u"sentinel";
  BSTR source = sentinel;
  BSTR description = source;
  BSTR helpFile = source;
  DWORD context = 7;
  EXPECT_EQ(record->GetGUID(&guid), S_OK);
  EXPECT_EQ(record->GetSource(&source), S_OK);
  EXPECT_EQ(record->GetDescription(&description), S_OK);
  EXPECT_EQ(record->GetHelpFile(&helpFile), S_OK);
  EXPECT_EQ(record->GetHelpContext(&context), S_OK);
  EXPECT_TRUE(IsEqualGUID(guid, GUID_NULL));
  EXPECT_EQ(source, nullptr);
  EXPECT_EQ(description, nullptr);
  EXPECT_EQ(helpFile, nullptr);
  EXPECT_EQ(context, 0u);
  record->Release();
}

TEST(ErrorInfo, AnswersForItsThreeInterfacesOnly) {
  IErrorInfo* record = MakeRecord(u"x");
  ASSERT_NE(record, nullptr);
  for (const IID* iid : {&IID_IUnknown, &IID_IErrorInfo, &IID_ICreateErrorInfo}) {
    IUnknown* answer = nullptr;
    EXPECT_EQ(record->QueryInterface(*iid, reinterpret_cast<void**>(&answer)), S_OK);
    ASSERT_NE(answer, nullptr);
    answer->Release();
  }
  void* answer = record;
  EXPECT_EQ(record->QueryInterface(IID_IClassFactory, &answer), E_NOINTERFACE);
  EXPECT_EQ(answer, nullptr);
  EXPECT_EQ(record->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(record->Release(), 0u);
}

TEST(ErrorInfo, NullOutsAreRefused) {
  EXPECT_EQ(CreateErrorInfo(nullptr), E_INVALIDARG);
  EXPECT_EQ(GetErrorInfo(0, nullptr), E_INVALIDARG);
  IErrorInfo* record = MakeRecord(u"x");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->GetGUID(nullptr), E_INVALIDARG);
  EXPECT_EQ(record->GetSource(nullptr), E_INVALIDARG);
  EXPECT_EQ(record->GetDescription(nullptr), E_INVALIDARG);
  EXPECT_EQ(record->GetHelpFile(nullptr), E_INVALIDARG);
  EXPECT_EQ(record->GetHelpContext(nullptr), E_INVALIDARG);
  record->Release();
}

TEST(ErrorInfo, GetHandsTheRecordOverAndClearsIt) {
  IErrorInfo* record = MakeRecord(u"handed over");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(SetErrorInfo(0, record), S_OK);
  EXPECT_EQ(References(record), 2u);

  IErrorInfo* got = nullptr;
  EXPECT_EQ(GetErrorInfo(0, &got), S_OK);
  EXPECT_EQ(got, record);
  EXPECT_EQ(References(record), 2u) << "the thread's reference went to the caller";
  got->Release();

  got = record;
  EXPECT_EQ(GetErrorInfo(0, &got), S_FALSE);
  EXPECT_EQ(got, nullptr);
  EXPECT_EQ(record->Release(), 0u);
}

TEST(ErrorInfo, SetReplacesAndNullClears) {
  IErrorInfo* first = MakeRecord(u"first");
  IErrorInfo* second = MakeRecord(u"second");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  SetErrorInfo(0, first);
  SetErrorInfo(0, second);
  EXPECT_EQ(References(first), 1u);
  IErrorInfo* got = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &got), S_OK);
  EXPECT_EQ(Description(got), u"second");
  got->Release();

  SetErrorInfo(0, first);
  EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
  EXPECT_EQ(References(first), 1u);
  EXPECT_EQ(GetErrorInfo(0, &got), S_FALSE);
  EXPECT_EQ(got, nullptr);
  first->Release();
  second->Release();
}

TEST(ErrorInfo, AnotherThreadSeesNothing) {
  IErrorInfo* record = MakeRecord(u"mine");
  ASSERT_NE(record, nullptr);
  SetErrorInfo(0, record);
  HRESULT otherStatus = S_OK;
  IErrorInfo* otherRecord = record;
  std::thread([&] { otherStatus = GetErrorInfo(0, &otherRecord); }).join();
  EXPECT_EQ(otherStatus, S_FALSE);
  EXPECT_EQ(otherRecord, nullptr);

  IErrorInfo* got = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &got), S_OK);
  EXPECT_EQ(got, record);
  got->Release();
  record->Release();
}

TEST(ErrorInfo, ThreadReleasesItsRecordWhenItEnds) {
  IErrorInfo* kept = MakeRecord(u"kept by the test");
  ASSERT_NE(kept, nullptr);
  std::thread([kept] { SetErrorInfo(0, kept); }).join();
  EXPECT_EQ(References(kept), 1u);
  EXPECT_EQ(kept->Release(), 0u);

  // Held by the thread alone: only the thread's end frees it, or the leak check fires.
  std::thread([] {
    IErrorInfo* dropped = MakeRecord(u"dropped");
    SetErrorInfo(0, dropped);
    dropped->Release();
  }).join();
}

}  // namespace
