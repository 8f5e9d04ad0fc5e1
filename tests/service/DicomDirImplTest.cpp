#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <regex>
#include <string>

#include "ServiceTestSupport.h"
#include "TempFolder.h"
#include "support/TextConversion.h"
#include "writing/ViewerPackage.h"

// Finding, reading and writing are tested in their own folders; here, what reaches the host.
namespace halvorine {
namespace {

class DicomDirImplTest : public ServiceTest {
 protected:
  void SetUp() override {
    service_ = Make<IDicomDirImpl>();
    ASSERT_TRUE(service_);
    SetErrorInfo(0, nullptr);
  }
  void TearDown() override {
    service_ = ComPtr<IDicomDirImpl>();
    ServiceTest::TearDown();
  }

  // Checks the status of a failure and gives the description that it left.
  static std::string Failure(HRESULT status, HRESULT expected) {
    EXPECT_EQ(status, expected);
    return ToNarrow(TakeFailureDescription());
  }

  // Whether the description is the XML form of messageProper raised in DicomDirImpl.
  static bool IsRaised(const std::string& description, const std::string& messageProper) {
    const std::string head = "<exception Message=\"" + messageProper + " File=DicomDirImpl, Line=";
    return description.rfind(head, 0) == 0 &&
           std::regex_match(description.substr(head.size()),
                            std::regex("[1-9][0-9]*\"></exception>"));
  }

  ComPtr<IDicomDirImpl> service_;
};

// A found file that isn't DICOM reaches the parser, which refuses it; a failed load hands out
// no tree.
TEST_F(DicomDirImplTest, LoadChecksItsArgumentsThenFindsTheFileOrSaysWhy) {
  SafeArrayPtr patients;
  EXPECT_EQ(Failure(service_->LoadDicomDir(nullptr, nullptr), E_POINTER),
            "Unspecified directory name in the Halvorine.");
  EXPECT_EQ(Failure(service_->LoadDicomDir(Text(u"/tmp").get(), nullptr), E_POINTER),
            "NULL patients array in the Halvorine.");
  const TempFolder folder;
  std::filesystem::create_directory(folder.Path("DICOMDIR"));
  WriteWholeFile(folder.Path("DICOMDIR/dicomdir"), "not parsed yet");
  const auto failure = [&](const std::string& directory) {
    const HRESULT status =
        service_->LoadDicomDir(Text(ToWide(directory)).get(), patients.Receive());
    EXPECT_EQ(patients.get(), nullptr) << directory;
    return Failure(status, E_FAIL);
  };
  EXPECT_PRED2(IsRaised, failure("/no/such/folder/"), "Can't open folder /no/such/folder");
  EXPECT_EQ(failure(folder.Path()), "No DICOMDIR file found in the specified directory.");
  const std::string unparsed = failure(folder.Path("DICOMDIR"));
  EXPECT_NE(unparsed.find("The parser buffer is NULL."), std::string::npos) << unparsed;
}

// The disc itself is the writer's affair (tests/writing); here, what reaches the host.
TEST_F(DicomDirImplTest, CreateChecksItsArgumentsInOrderThenMakesTheDiscOrSaysWhy) {
  const TempFolder folder;
  BString title = Text(u"T");
  SafeArrayPtr patients = ArrayOf({});
  const char* const messages[] = {"Unspecified directory name in the Halvorine.",
                                  "Unspecified CD package title in the Halvorine.",
                                  "NULL array in the Halvorine.",
                                  "NULL output directory in the Halvorine."};
  for (int given = 0; given < 4; ++given) {
    const HRESULT status = service_->CreateDicomDir(
        given > 0 ? Text(ToWide(folder.Path())).get() : nullptr, given > 1 ? title.get() : nullptr,
        given > 2 ? patients.get() : nullptr, nullptr, VARIANT_TRUE, nullptr);
    EXPECT_EQ(Failure(status, E_POINTER), messages[given]);
  }
  const auto create = [&](const std::string& directory) {
    BString output;
    const HRESULT status =
        service_->CreateDicomDir(Text(ToWide(directory)).get(), title.get(), patients.get(),
                                 output.Receive(), VARIANT_FALSE, nullptr);
    EXPECT_EQ(ToNarrow(output.get()), directory + "/T");
    return status;
  };
  EXPECT_EQ(create(folder.Path()), S_OK) << ToNarrow(TakeFailureDescription());
  EXPECT_TRUE(std::filesystem::is_regular_file(folder.Path("T/DICOMDIR")));
  EXPECT_PRED2(IsRaised, Failure(create(folder.Path("missing")), E_FAIL),
               "Failed to create directory because the path was not found. \r\nThe directory "
               "name: " +
                   folder.Path("missing/T"));
}

TEST_F(DicomDirImplTest, AnInstanceFillsTheViewerListAndDestroyingAnyEmptiesIt) {
  EXPECT_EQ(GetViewerFileList().size(), 11u);
  Make<IDicomDirImpl>();
  EXPECT_TRUE(GetViewerFileList().empty()) << "a second instance, gone, took the list with it";
}

TEST_F(DicomDirImplTest, InitializeTraceRefusesLevelsOutsideZeroToFour) {
  for (LONG level : {-1, 5, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()}) {
    EXPECT_EQ(Failure(service_->InitializeTrace(Text(u"trace.log").get(), level), E_POINTER),
              "The Halvorine received an invalid trace level.")
        << level;
  }
}

}  // namespace
}  // namespace halvorine
