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
  std::string expected;  // the name at the end of the path; empty when the result is false
};

// The order of the entries is DirectorySearch's; here the first file wins, folders are passed
// over, and the path ends in the stored name. In a folder whose name is UTF-8, given with and
// without a trailing '/'.
TEST(DirectoryLocationTest, FindsTheFirstFileUnderItsStoredName) {
  const FoundCase cases[] = {
      {"lower case", {"dicomdir"}, {}, "dicomdir"},
      {"first file, folders passed over", {"dicomdir", "DicomDir"}, {"DICOMDIR"}, "DicomDir"},
      {"only folders answer", {}, {"DICOMDIR", "dicomdir"}, ""},
  };
  for (const FoundCase& c : cases) {
    TempFolder temp;
    const std::string folder = temp.MakeFolder("M\xC3\xBCller");
    for (const std::string& file : c.files) WriteWholeFile(folder + "/" + file, "x");
    for (const std::string& sub : c.folders) temp.MakeFolder("M\xC3\xBCller/" + sub);
    for (const std::string& directory : {folder, folder + "/"}) {
      std::string path = "untouched";
      EXPECT_EQ(FindDicomDirFile(ToWide(directory).c_str(), &path), !c.expected.empty()) << c.name;
      EXPECT_EQ(path, c.expected.empty() ? "untouched" : folder + "/" + c.expected) << c.name;
    }
  }
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
