#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <thread>

#include "CountingUnknown.h"

// The service's tests read back the fields that it sets; here, the record's interfaces, and how
// the thread's record is handed around.
namespace {

using halvorine::References;

// A new record's IErrorInfo, with one reference.
IErrorInfo* MakeRecord() {
  ICreateErrorInfo* creator = nullptr;
  EXPECT_EQ(CreateErrorInfo(&creator), S_OK);
  if (creator == nullptr) return nullptr;
  IErrorInfo* record = nullptr;
  EXPECT_EQ(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&record)), S_OK);
  creator->Release();
  return record;
}

TEST(ErrorInfo, AnswersForItsInterfacesOnlyAndRefusesNullOuts) {
  IErrorInfo* record = MakeRecord();
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
  int call = 0;
  for (const HRESULT status :
       {CreateErrorInfo(nullptr), GetErrorInfo(0, nullptr), record->GetGUID(nullptr),
        record->GetSource(nullptr), record->GetDescription(nullptr), record->GetHelpFile(nullptr),
        record->GetHelpContext(nullptr)}) {
    EXPECT_EQ(status, E_INVALIDARG) << "call " << call++;
  }
  EXPECT_EQ(record->Release(), 0u);
}

// The thread's record holds a reference of its own, which Get hands to the caller.
TEST(ErrorInfo, SetReplacesAndGetHandsTheRecordOver) {
  IErrorInfo* first = MakeRecord();
  IErrorInfo* second = MakeRecord();
  ASSERT_TRUE(first && second);
  EXPECT_EQ(SetErrorInfo(0, first), S_OK);
  EXPECT_EQ(References(first), 2u);
  SetErrorInfo(0, second);
  EXPECT_EQ(References(first), 1u);
  IErrorInfo* got = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &got), S_OK);
  EXPECT_EQ(got, second);
  EXPECT_EQ(References(second), 2u) << "the thread's reference went to the caller";
  got->Release();
  SetErrorInfo(0, first);
  EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
  EXPECT_EQ(References(first), 1u);
  got = first;
  EXPECT_EQ(GetErrorInfo(0, &got), S_FALSE);
  EXPECT_EQ(got, nullptr);
  EXPECT_EQ(first->Release(), 0u);
  EXPECT_EQ(second->Release(), 0u);
}

TEST(ErrorInfo, EachThreadHasItsOwnRecordReleasedWhenItEnds) {
  IErrorInfo* record = MakeRecord();
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
  EXPECT_EQ(References(record), 2u) << "the other thread's end didn't release its reference";
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(record->Release(), 0u);
}

}  // namespace
