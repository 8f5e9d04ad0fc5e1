#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <limits>
#include <regex>
#include <string>

#include "ServiceTestSupport.h"
#include "TempFolder.h"
#include "support/TextConversion.h"
#include "writing/ViewerPackage.h"

namespace halvorine {
namespace {

namespace fs = std::filesystem;

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

  // A load of folder, which fails handing out no tree; gives the failure's description.
  std::string LoadFailure(const std::string& folder, HRESULT expected = E_FAIL) {
    SafeArrayPtr patients;
    const HRESULT status = service_->LoadDicomDir(Text(ToWide(folder)).get(), patients.Receive());
    EXPECT_EQ(patients.get(), nullptr) << "a failed load handed out a tree";
    return Failure(status, expected);
  }

  ComPtr<IDicomDirImpl> service_;
};

TEST_F(DicomDirImplTest, LoadChecksItsArgumentsDirectoryFirst) {
  SafeArrayPtr patients;
  EXPECT_EQ(Failure(service_->LoadDicomDir(nullptr, patients.Receive()), E_POINTER),
            "Unspecified directory name in the Halvorine.");
  EXPECT_EQ(Failure(service_->LoadDicomDir(nullptr, nullptr), E_POINTER),
            "Unspecified directory name in the Halvorine.");
  EXPECT_EQ(Failure(service_->LoadDicomDir(Text(u"/tmp").get(), nullptr), E_POINTER),
            "NULL patients array in the Halvorine.");
  EXPECT_EQ(patients.get(), nullptr);
  for (const char* folder : {"/no/such/folder", "/no/such/folder/"}) {
    const std::string description = LoadFailure(folder);
    EXPECT_TRUE(IsRaised(description, "Can't open folder /no/such/folder")) << description;
  }
}

// A found file that isn't DICOM reaches the parser, which refuses it.
TEST_F(DicomDirImplTest, LoadFindsTheFileOrSaysWhy) {
  const auto file = [](const fs::path& path) { WriteWholeFile(path.string(), "not parsed yet"); };
  const struct {
    std::function<void(const fs::path&)> fill;
    char form;  // 'r': "Can't open file" raised; '=': the description; '~': a text that it holds
    std::string description;
  } cases[] = {
      {[](const fs::path&) {}, 'r', ""},
      {[&](const fs::path& f) { file(f / "DICOMDIR.BAK"), file(f / "IM0"); }, 'r', ""},
      {[&](const fs::path& f) { fs::create_directory(f / "DICOM"), file(f / "DICOM/DICOMDIR"); },
       'r', ""},
      {[](const fs::path& f) { fs::create_directory(f / "DICOMDIR"); }, '=',
       "No DICOMDIR file found in the specified directory."},
      {[&](const fs::path& f) { file(f / "DICOMDIR"); }, '~', "The parser buffer is NULL."},
      {[&](const fs::path& f) { file(f / "dicomdir"); }, '~', "The parser buffer is NULL."},
  };
  for (const auto& c : cases) {
    const TempFolder folder;
    c.fill(folder.Path());
    const std::string description = LoadFailure(folder.Path());
    if (c.form == 'r') {
      EXPECT_TRUE(IsRaised(description, "Can't open file " + folder.Path("DICOMDIR")))
          << description;
    } else if (c.form == '=') {
      EXPECT_EQ(description, c.description);
    } else {
      EXPECT_NE(description.find(c.description), std::string::npos) << description;
    }
  }
}

TEST_F(DicomDirImplTest, CreateChecksItsArgumentsInOrder) {
  BString directory = Text(u"/tmp/out");
  BString title = Text(u"Title");
  SafeArrayPtr patients = ArrayOf({});
  const char* const messages[] = {"Unspecified directory name in the Halvorine.",
                                  "Unspecified CD package title in the Halvorine.",
                                  "NULL array in the Halvorine.",
                                  "NULL output directory in the Halvorine."};
  for (int given = 0; given < 4; ++given) {
    const HRESULT status = service_->CreateDicomDir(
        given > 0 ? directory.get() : nullptr, given > 1 ? title.get() : nullptr,
        given > 2 ? patients.get() : nullptr, nullptr, VARIANT_TRUE, nullptr);
    EXPECT_EQ(Failure(status, E_POINTER), messages[given]);
  }
}

// The disc itself is the writer's affair (tests/writing); here, what reaches the host.
TEST_F(DicomDirImplTest, CreateMakesTheDiscOrSaysWhyWithTheOutputSet) {
  const TempFolder folder;
  SafeArrayPtr patients = ArrayOf({});
  for (const std::string& directory : {folder.Path(), folder.Path("missing")}) {
    BString output;
    const HRESULT status =
        service_->CreateDicomDir(Text(ToWide(directory)).get(), Text(u"T").get(), patients.get(),
                                 output.Receive(), VARIANT_FALSE, nullptr);
    EXPECT_EQ(ToNarrow(output.get()), directory + "/T");
    if (directory == folder.Path()) {
      EXPECT_EQ(status, S_OK) << ToNarrow(TakeFailureDescription());
      EXPECT_TRUE(fs::is_regular_file(directory + "/T/DICOMDIR"));
      continue;
    }
    const std::string description = Failure(status, E_FAIL);
    EXPECT_TRUE(IsRaised(description,
                         "Failed to create directory because the path was not found. \r\nThe "
                         "directory name: " +
                             directory + "/T"))
        << description;
  }
}

TEST_F(DicomDirImplTest, AnInstanceFillsTheViewerListAndDestroyingAnyEmptiesIt) {
  EXPECT_EQ(GetViewerFileList().size(), 11u);
  Make<IDicomDirImpl>();
  EXPECT_TRUE(GetViewerFileList().empty()) << "a second instance, gone, took the list with it";
}

TEST_F(DicomDirImplTest, InitializeTraceRefusesLevelsOutsideZeroToFour) {
  for (LONG level : {-1, 5, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()}) {
    SCOPED_TRACE(level);
    for (BSTR name : {static_cast<BSTR>(nullptr), Text(u"trace.log").Detach()}) {
      EXPECT_EQ(Failure(service_->InitializeTrace(name, level), E_POINTER),
                "The Halvorine received an invalid trace level.");
      SysFreeString(name);
    }
  }
}

}  // namespace
}  // namespace halvorine
