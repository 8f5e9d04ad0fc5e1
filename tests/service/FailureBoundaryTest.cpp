#include "service/FailureBoundary.h"

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "ServiceTestSupport.h"
#include "platform/com/TempRegistry.h"

namespace halvorine {
namespace {

class FailureBoundaryTest : public ServiceTest {
 protected:
  void SetUp() override { SetErrorInfo(0, nullptr); }
};

TEST_F(FailureBoundaryTest, ReportFailureMakesAFreshRecordAndGivesTheStatusBack) {
  for (HRESULT status : {E_POINTER, E_FAIL, E_NOTIMPL, S_FALSE}) {
    EXPECT_EQ(ReportFailure(u"first", E_FAIL), E_FAIL);
    EXPECT_EQ(ReportFailure(u"what went wrong", status), status);
    EXPECT_EQ(TakeFailureDescription(), u"what went wrong");
    EXPECT_EQ(TakeFailureDescription(), u"(none)") << "the record wasn't handed over";
  }
  EXPECT_EQ(ReportFailure(nullptr, E_FAIL), E_FAIL);
  EXPECT_EQ(TakeFailureDescription(), u"Unknown Error");
}

TEST_F(FailureBoundaryTest, TheSourceIsTheRegisteredProgrammaticName) {
  TempRegistry registry;
  ASSERT_EQ(DllRegisterServer(), S_OK);
  EXPECT_EQ(ReportFailure(u"x", E_FAIL), E_FAIL);
  EXPECT_EQ(TakeFailureDescription(u"DicomDir.DicomDirImpl.1"), u"x");
  ASSERT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_EQ(ReportFailure(u"x", E_FAIL), E_FAIL);
  EXPECT_EQ(TakeFailureDescription(), u"x");
  registry.Write("not a registry");
  EXPECT_EQ(ReportFailure(u"x", E_FAIL), E_FAIL);
  EXPECT_EQ(TakeFailureDescription(), u"x");
}

// A throw becomes E_FAIL with its description; success leaves no record.
TEST_F(FailureBoundaryTest, ThrowsBecomeEFailWithTheirDescription) {
  EXPECT_EQ(RunGuarded([] { return S_OK; }), S_OK);
  EXPECT_EQ(TakeFailureDescription(), u"(none)");
  const std::pair<void (*)(), std::u16string_view> cases[] = {
      {[] { Raise("DicomDirImpl", 42, "Can't open folder %s", "/x"); },
       u"<exception Message=\"Can't open folder /x File=DicomDirImpl, Line=42\"></exception>"},
      {[] { RaiseStatus(E_POINTER, "DicomDirImpl", 7); },
       u"<exception Message=\"COM method failed. HRESULT=80004003, File=DicomDirImpl, "
       u"Line=7\"></exception>"},
      {[] {
         throw MyException("Failed to read setting. File=DicomDirImpl, Line=3",
                           MyException("inner \"quoted\" <text>"));
       },
       u"<exception Message=\"Failed to read setting. File=DicomDirImpl, Line=3\">"
       u"<exception Message=\"inner \"quoted\" <text>\"></exception></exception>"},
      {[] { throw std::bad_alloc(); }, u"The Halvorine caught an unknown error."},
      {[] { throw 42; }, u"The Halvorine caught an unknown error."},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(RunGuarded([&row]() -> HRESULT {
                row.first();
                return S_OK;
              }),
              E_FAIL);
    EXPECT_EQ(TakeFailureDescription(), row.second);
  }
}

}  // namespace
}  // namespace halvorine
