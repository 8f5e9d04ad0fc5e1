#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <ostream>
#include <regex>
#include <string>

#include "ServiceTestSupport.h"
#include "support/TextConversion.h"
#include "writing/ViewerPackage.h"

namespace halvorine {
namespace {

namespace fs = std::filesystem;

// A folder of the test's own, removed with everything in it.
class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "halvorine-service-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::string EscapeRegex(const std::string& text) {
  static const std::regex kSpecial(R"([.^$|()\[\]{}*+?\\])");
  return std::regex_replace(text, kSpecial, R"(\$&)");
}

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

  // Checks that the description is the XML form of messageProper raised in DicomDirImpl.
  static void ExpectRaised(const std::string& description, const std::string& messageProper) {
    const std::regex form("<exception Message=\"" + EscapeRegex(messageProper) +
                          " File=DicomDirImpl, Line=[1-9][0-9]*\"></exception>");
    EXPECT_TRUE(std::regex_match(description, form)) << description;
  }

  HRESULT Load(const std::string& folder, SafeArrayPtr* patients) {
    return service_->LoadDicomDir(Text(ToWide(folder)).get(), patients->Receive());
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
}

TEST_F(DicomDirImplTest, LoadOfAMissingFolderNamesIt) {
  for (const char* folder : {"/no/such/folder", "/no/such/folder/"}) {
    SCOPED_TRACE(folder);
    SafeArrayPtr patients;
    ExpectRaised(Failure(Load(folder, &patients), E_FAIL), "Can't open folder /no/such/folder");
    EXPECT_EQ(patients.get(), nullptr);
  }
}

struct FolderCase {
  const char* name;
  void (*fill)(const fs::path& folder);
  HRESULT status;
  // The message proper of a raised failure, after the folder and a '/'; none for a plain one.
  std::optional<std::string> raisedAfterFolder;
  std::string plainDescription;
  // A text that the description of a lower layer's failure holds.
  const char* contained = nullptr;
};

void PrintTo(const FolderCase& c, std::ostream* os) { *os << c.name; }

void MakeFile(const fs::path& path) { std::ofstream(path) << "not parsed yet"; }

class DicomDirImplFolders : public DicomDirImplTest,
                            public testing::WithParamInterface<FolderCase> {};

TEST_P(DicomDirImplFolders, LoadFindsTheFileOrSaysWhy) {
  TempFolder folder;
  ASSERT_FALSE(folder.path().empty());
  GetParam().fill(folder.path());
  SafeArrayPtr patients;
  const HRESULT status = Load(folder.path(), &patients);
  const std::string description = Failure(status, GetParam().status);
  if (GetParam().raisedAfterFolder) {
    ExpectRaised(description,
                 "Can't open file " + folder.path() + "/" + *GetParam().raisedAfterFolder);
  } else if (!GetParam().plainDescription.empty()) {
    EXPECT_EQ(description, GetParam().plainDescription);
  } else {
    EXPECT_NE(description.find(GetParam().contained), std::string::npos) << description;
  }
  EXPECT_EQ(patients.get(), nullptr) << "a failed load handed out a tree";
}

INSTANTIATE_TEST_SUITE_P(
    Folders, DicomDirImplFolders,
    testing::Values(FolderCase{"Empty", [](const fs::path&) {}, E_FAIL, "DICOMDIR", ""},
                    FolderCase{"OtherFilesOnly",
                               [](const fs::path& f) {
                                 MakeFile(f / "DICOMDIR.BAK");
                                 MakeFile(f / "IM0");
                               },
                               E_FAIL, "DICOMDIR", ""},
                    FolderCase{"OnlyInASubFolder",
                               [](const fs::path& f) {
                                 fs::create_directory(f / "DICOM");
                                 MakeFile(f / "DICOM" / "DICOMDIR");
                               },
                               E_FAIL, "DICOMDIR", ""},
                    FolderCase{"SubFolderNamedDicomDir",
                               [](const fs::path& f) { fs::create_directory(f / "DICOMDIR"); },
                               E_FAIL, std::nullopt,
                               "No DICOMDIR file found in the specified directory."},
                    // A found file that isn't DICOM reaches the parser, which refuses it.
                    FolderCase{"Found", [](const fs::path& f) { MakeFile(f / "DICOMDIR"); },
                               E_FAIL, std::nullopt, "", "The parser buffer is NULL."},
                    FolderCase{"FoundInLowerCase",
                               [](const fs::path& f) { MakeFile(f / "dicomdir"); }, E_FAIL,
                               std::nullopt, "", "The parser buffer is NULL."}),
    [](const testing::TestParamInfo<FolderCase>& param) { return std::string(param.param.name); });

struct CreateCase {
  const char* name;
  bool directory;
  bool title;
  bool patients;
  bool output;
  const char* message;
};

void PrintTo(const CreateCase& c, std::ostream* os) { *os << c.name; }

class DicomDirImplCreate : public DicomDirImplTest,
                           public testing::WithParamInterface<CreateCase> {};

TEST_P(DicomDirImplCreate, ChecksItsArgumentsInOrder) {
  const CreateCase& c = GetParam();
  BString directory = Text(u"/tmp/out");
  BString title = Text(u"Title");
  SafeArrayPtr patients = ArrayOf({});
  BString output;
  const HRESULT status = service_->CreateDicomDir(
      c.directory ? directory.get() : nullptr, c.title ? title.get() : nullptr,
      c.patients ? patients.get() : nullptr, c.output ? output.Receive() : nullptr, VARIANT_TRUE,
      nullptr);
  EXPECT_EQ(Failure(status, E_POINTER), c.message);
  EXPECT_TRUE(output.IsNull());
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, DicomDirImplCreate,
    testing::Values(
        CreateCase{"AllNull", false, false, false, false,
                   "Unspecified directory name in the Halvorine."},
        CreateCase{"TitleBeforeArray", true, false, false, false,
                   "Unspecified CD package title in the Halvorine."},
        CreateCase{"ArrayBeforeOutput", true, true, false, false, "NULL array in the Halvorine."},
        CreateCase{"Output", true, true, true, false, "NULL output directory in the Halvorine."}),
    [](const testing::TestParamInfo<CreateCase>& param) { return std::string(param.param.name); });

// The disc itself is the writer's affair (tests/writing); here, what reaches the host.
TEST_F(DicomDirImplTest, CreateMakesTheDiscOrSaysWhyWithTheOutputSet) {
  TempFolder folder;
  ASSERT_FALSE(folder.path().empty());
  SafeArrayPtr patients = ArrayOf({});
  const std::string missing = folder.path() + "/missing";
  for (const std::string& directory : {folder.path(), missing}) {
    BString output;
    const HRESULT status =
        service_->CreateDicomDir(Text(ToWide(directory)).get(), Text(u"T").get(), patients.get(),
                                 output.Receive(), VARIANT_FALSE, nullptr);
    EXPECT_EQ(ToNarrow(output.get()), directory + "/T");
    if (directory == missing) {
      ExpectRaised(Failure(status, E_FAIL),
                   "Failed to create directory because the path was not found. \r\nThe "
                   "directory name: " +
                       missing + "/T");
    } else {
      EXPECT_EQ(status, S_OK) << ToNarrow(TakeFailureDescription());
      EXPECT_TRUE(fs::is_regular_file(directory + "/T/DICOMDIR"));
    }
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
