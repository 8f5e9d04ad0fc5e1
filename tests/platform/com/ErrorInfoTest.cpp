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

// What the getters give, as "guid|source|description|help file|context"; null texts as "-".
std::u16string Fields(IErrorInfo* record) {
  GUID guid = GUID_NULL;
  EXPECT_EQ(record->GetGUID(&guid), S_OK);
  std::u16string fields = IsEqualGUID(guid, kSomeGuid)   ? u"some"
                          : IsEqualGUID(guid, GUID_NULL) ? u"null"
                                                         : u"other";
  char16_t sentinel[] = u"sentinel";
  for (auto get : {&IErrorInfo::GetSource, &IErrorInfo::GetDescription, &IErrorInfo::GetHelpFile}) {
    BSTR text = sentinel;
    EXPECT_EQ((record->*get)(&text), S_OK);
    fields += u"|" + std::u16string(text == nullptr ? u"-" : text);
    if (text != sentinel) SysFreeString(text);
  }
  DWORD context = 7;
  EXPECT_EQ(record->GetHelpContext(&context), S_OK);
  for (const char digit : "|" + std::to_string(context)) fields += static_cast<char16_t>(digit);
  return fields;
}

std::u16string Description(IErrorInfo* record) {
  BSTR text = nullptr;
  EXPECT_EQ(record->GetDescription(&text), S_OK);
  std::u16string copy = text == nullptr ? u"(null)" : text;
  SysFreeString(text);
  return copy;
}

TEST(ErrorInfo, GivesNullAndZeroUntilSetThenTheLastValueSetAndRefusesNullOuts) {
  ICreateErrorInfo* creator = nullptr;
  ASSERT_EQ(CreateErrorInfo(&creator), S_OK);
  IErrorInfo* record = nullptr;
  ASSERT_EQ(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&record)), S_OK);
  EXPECT_EQ(Fields(record), u"null|-|-|-|0");
  for (const HRESULT status :
       {creator->SetGUID(kSomeGuid), creator->SetSource(const_cast<LPOLESTR>(u"DicomDir.1")),
        creator->SetDescription(const_cast<LPOLESTR>(u"first")),
        creator->SetDescription(const_cast<LPOLESTR>(u"second")),
        creator->SetHelpFile(const_cast<LPOLESTR>(u"help.chm")), creator->SetHelpContext(42)}) {
    EXPECT_EQ(status, S_OK);
  }
  creator->Release();
  EXPECT_EQ(Fields(record), u"some|DicomDir.1|second|help.chm|42");
  // It answers for its three interfaces only, and refuses null outs.
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
  for (const HRESULT status :
       {CreateErrorInfo(nullptr), GetErrorInfo(0, nullptr), record->GetGUID(nullptr),
        record->GetSource(nullptr), record->GetDescription(nullptr), record->GetHelpFile(nullptr),
        record->GetHelpContext(nullptr)}) {
    EXPECT_EQ(status, E_INVALIDARG);
  }
  EXPECT_EQ(record->Release(), 0u);
}

// The thread's record holds a reference of its own, which Get hands to the caller.
TEST(ErrorInfo, SetReplacesAndGetHandsTheRecordOver) {
  IErrorInfo* first = MakeRecord(u"first");
  IErrorInfo* second = MakeRecord(u"second");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(SetErrorInfo(0, first), S_OK);
  EXPECT_EQ(References(first), 2u);
  SetErrorInfo(0, second);
  EXPECT_EQ(References(first), 1u);
  IErrorInfo* got = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &got), S_OK);
  EXPECT_EQ(got, second);
  EXPECT_EQ(References(second), 2u) << "the thread's reference went to the caller";
  EXPECT_EQ(Description(got), u"second");
  got->Release();
  got = first;
  EXPECT_EQ(GetErrorInfo(0, &got), S_FALSE);
  EXPECT_EQ(got, nullptr);

  SetErrorInfo(0, first);
  EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
  EXPECT_EQ(References(first), 1u);
  EXPECT_EQ(GetErrorInfo(0, &got), S_FALSE);
  EXPECT_EQ(first->Release(), 0u);
  EXPECT_EQ(second->Release(), 0u);
}

TEST(ErrorInfo, EachThreadHasItsOwnRecordReleasedWhenItEnds) {
  IErrorInfo* record = MakeRecord(u"mine");
  ASSERT_NE(record, nullptr);
  SetErrorInfo(0, record);
  HRESULT otherStatus = S_OK;
  IErrorInfo* otherRecord = record;
  std::thread([&] {
    otherStatus = GetErrorInfo(0, &otherRecord);
    SetErrorInfo(0, record);
  }).join();
  EXPECT_EQ(otherStatus, S_FALSE);
  EXPECT_EQ(otherRecord, nullptr);
  EXPECT_EQ(References(record), 2u) << "the other thread's end released its reference";

  IErrorInfo* got = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &got), S_OK);
  EXPECT_EQ(got, record);
  got->Release();
  EXPECT_EQ(record->Release(), 0u);

  // Held by the thread alone: only the thread's end frees it, or the leak check fires.
  std::thread([] {
    IErrorInfo* dropped = MakeRecord(u"dropped");
    SetErrorInfo(0, dropped);
    dropped->Release();
  }).join();
}

}  // namespace
