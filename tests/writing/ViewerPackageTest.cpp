#include "writing/ViewerPackage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "DiscTestSupport.h"
#include "RaisedMessage.h"
#include "TempFolder.h"

namespace halvorine {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kRows = {
    "Lumbrel.exe",       "DicomDir.dll",    "Tessarine.dll", "Quorl8.dll",
    "Quorl12.dll",       "Quorl16.dll",     "Wavelane.dll",  "dicom_dictionary.txt",
    "LumbrelAssets.dll", "LumbrelHelp.chm", "autorun.inf"};

std::vector<std::string> Sorted(std::vector<std::string> names) {
  std::sort(names.begin(), names.end());
  return names;
}

// The host's folder with every file of the package, under its plain name and in culture "xx".
class ViewerPackageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    FillViewerFileList();
    for (const char* name : {"LumbrelAssets.xx.dll", "LumbrelHelp.xx.chm"}) {
      WriteWholeFile(host_ + "/" + name, name);
    }
    for (const std::string& name : kRows) WriteWholeFile(host_ + "/" + name, name);
  }
  void TearDown() override { EmptyViewerFileList(); }

  TempFolder temp_;
  const std::string host_ = temp_.MakeFolder("host");
  const std::string disc_ = temp_.MakeFolder("disc");
};

// Without a culture the assets stay behind and the help keeps its plain name; with one, both
// bear it. A second fill adds no rows, whose copies would fail; an emptied list copies nothing.
TEST_F(ViewerPackageTest, TheCultureDecidesNamesAndRows) {
  FillViewerFileList();
  for (const std::string culture : {"", "xx"}) {
    SCOPED_TRACE(culture);
    fs::remove_all(disc_);
    fs::create_directory(disc_);
    CopyViewerPackage(FileSystem::Posix(), host_ + "/", disc_, culture);
    std::vector<std::string> expected = kRows;
    expected[8] = culture.empty() ? "" : "LumbrelAssets.xx.dll";
    expected[9] = culture.empty() ? "LumbrelHelp.chm" : "LumbrelHelp.xx.chm";
    std::erase(expected, "");
    EXPECT_EQ(Entries(disc_), Sorted(expected));
    EXPECT_EQ(ReadWholeFile(disc_ + "/" + expected[8]), expected[8]);
  }
  EmptyViewerFileList();
  fs::remove_all(disc_);
  fs::create_directory(disc_);
  CopyViewerPackage(FileSystem::Posix(), host_, disc_, "xx");
  EXPECT_TRUE(Entries(disc_).empty());
}

TEST_F(ViewerPackageTest, TheFirstFailingCopyEndsTheRun) {
  WriteWholeFile(disc_ + "/Quorl8.dll", "the disc's own");
  const std::string message =
      RaisedMessage([&] { CopyViewerPackage(FileSystem::Posix(), host_, disc_, ""); });
  EXPECT_TRUE(IsPlaced(message,
                       "Failed to copy the Lumbrel file \r\nfrom:" + host_ + "/Quorl8.dll \r\nto " +
                           disc_ + "/Quorl8.dll\r\nWindows last error=17",
                       "DicomDirImpl"))
      << message;
  EXPECT_EQ(Entries(disc_), Sorted({"Lumbrel.exe", "DicomDir.dll", "Tessarine.dll", "Quorl8.dll"}));
  EXPECT_EQ(ReadWholeFile(disc_ + "/Quorl8.dll"), "the disc's own");
}

TEST(InsertCultureTest, InFrontOfTheLastPointOfTheName) {
  std::string path = "/a.b/c.d/LumbrelAssets.dll";
  InsertCulture(path, "de-CH");
  EXPECT_EQ(path, "/a.b/c.d/LumbrelAssets.de-CH.dll");
}

}  // namespace
}  // namespace halvorine
