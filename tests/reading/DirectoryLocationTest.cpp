#include "reading/DirectoryLocation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

std::string FailureOf(const std::string& directory) {
  const std::u16string wide = ToWide(directory);
  return RaisedMessage([&] {
    std::string path;
    FindDicomDirFile(wide.c_str(), &path);
  });
}

struct FoundCase {
  const char* name;
  std::vector<std::string> files;
  std::vector<std::string> folders;
  std::string expected;  // the name at the end of the path
};

TEST(DirectoryLocationTest, FindsTheFileUnderItsStoredName) {
  const FoundCase cases[] = {
      {"exact name", {"DICOMDIR"}, {}, "DICOMDIR"},
      {"lower case", {"dicomdir"}, {}, "dicomdir"},
      {"mixed case", {"DicomDir", "IMAGES"}, {}, "DicomDir"},
      {"exact name preferred", {"dicomdir", "DicomDir", "DICOMDIR", "DICOMDIr"}, {}, "DICOMDIR"},
      {"byte order without the exact name", {"dicomdir", "DicomDir"}, {}, "DicomDir"},
      {"folders passed over", {"dicomdir"}, {"DICOMDIR", "DicomDir"}, "dicomdir"},
  };
  for (const FoundCase& c : cases) {
    TempFolder temp;
    for (const std::string& file : c.files) WriteWholeFile(temp.Path(file), "x");
    for (const std::string& folder : c.folders) temp.MakeFolder(folder);
    std::string path = "untouched";
    EXPECT_TRUE(FindDicomDirFile(ToWide(temp.Path()).c_str(), &path)) << c.name;
    EXPECT_EQ(path, temp.Path(c.expected)) << c.name;
  }
}

TEST(DirectoryLocationTest, OneTrailingSlashGivesTheSamePath) {
  TempFolder temp;
  WriteWholeFile(temp.Path("DICOMDIR"), "x");
  for (const std::string& folder : {temp.Path(), temp.Path() + "/"}) {
    std::string path;
    EXPECT_TRUE(FindDicomDirFile(ToWide(folder).c_str(), &path)) << folder;
    EXPECT_EQ(path, temp.Path("DICOMDIR")) << folder;
  }
}

TEST(DirectoryLocationTest, AFolderNameInUtf8) {
  TempFolder temp;
  const std::string folder = temp.MakeFolder("M\xC3\xBCller");
  WriteWholeFile(folder + "/DICOMDIR", "x");
  std::string path;
  ASSERT_TRUE(FindDicomDirFile(ToWide(folder).c_str(), &path));
  EXPECT_EQ(path, folder + "/DICOMDIR");
}

TEST(DirectoryLocationTest, OnlyFoldersAnsweringGivesFalse) {
  TempFolder temp;
  temp.MakeFolder("DICOMDIR");
  temp.MakeFolder("dicomdir");
  std::string path = "untouched";
  EXPECT_FALSE(FindDicomDirFile(ToWide(temp.Path()).c_str(), &path));
  EXPECT_EQ(path, "untouched");
}

TEST(DirectoryLocationTest, FailuresNameTheFolderOrTheFile) {
  TempFolder temp;
  temp.MakeFolder("empty");
  temp.MakeFolder("nested/sub");
  WriteWholeFile(temp.Path("nested/sub/DICOMDIR"), "x");
  WriteWholeFile(temp.Path("plain"), "x");
  const struct {
    std::string directory;
    std::string proper;
  } cases[] = {
      {temp.Path("missing"), "Can't open folder " + temp.Path("missing")},
      {temp.Path("missing/"), "Can't open folder " + temp.Path("missing")},
      {"", "Can't open folder "},
      {"/", "Can't open folder "},
      // One trailing '/' goes; the probe then sees a name that ends in '/', which finds nothing.
      {temp.Path("empty//"), "Can't open folder " + temp.Path("empty/")},
      {temp.Path("empty"), "Can't open file " + temp.Path("empty/DICOMDIR")},
      {temp.Path("nested"), "Can't open file " + temp.Path("nested/DICOMDIR")},
      {temp.Path("plain"), "Can't open file " + temp.Path("plain/DICOMDIR")},
  };
  for (const auto& c : cases) {
    const std::string message = FailureOf(c.directory);
    EXPECT_TRUE(IsPlaced(message, c.proper, "DicomDirImpl")) << message;
  }
}

}  // namespace
}  // namespace halvorine
