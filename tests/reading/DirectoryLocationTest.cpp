#include "reading/DirectoryLocation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "TempFolder.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

// The order of the entries is DirectorySearch's; here the first file wins, folders are passed
// over, and the path ends in the stored name. In a folder whose name is UTF-8, given with and
// without a trailing '/'.
TEST(DirectoryLocationTest, FindsTheFirstFileUnderItsStoredName) {
  const struct {
    std::vector<std::string> files;
    std::vector<std::string> folders;
    std::string expected;  // the name at the end of the path; empty when the result is false
  } cases[] = {
      {{"dicomdir"}, {}, "dicomdir"},
      {{"dicomdir", "DicomDir"}, {"DICOMDIR"}, "DicomDir"},
      {{}, {"DICOMDIR", "dicomdir"}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    TempFolder temp;
    const std::string folder = temp.MakeFolder("M\xC3\xBCller");
    for (const std::string& file : c.files) WriteWholeFile(folder + "/" + file, "x");
    for (const std::string& sub : c.folders) temp.MakeFolder("M\xC3\xBCller/" + sub);
    for (const std::string& directory : {folder, folder + "/"}) {
      std::string path = "untouched";
      EXPECT_EQ(FindDicomDirFile(ToWide(directory).c_str(), &path), !c.expected.empty());
      EXPECT_EQ(path, c.expected.empty() ? "untouched" : folder + "/" + c.expected);
    }
  }
}

TEST(DirectoryLocationTest, FailuresNameTheFolderOrTheFile) {
  TempFolder temp;
  temp.MakeFolder("empty");
  temp.MakeFolder("nested/sub");
  WriteWholeFile(temp.Path("nested/sub/DICOMDIR"), "x");
  WriteWholeFile(temp.Path("plain"), "x");
  const std::string folder = "Can't open folder ";
  const std::string file = "Can't open file ";
  const std::pair<std::string, std::string> cases[] = {
      {temp.Path("missing"), folder + temp.Path("missing")},
      {"", folder},
      {"/", folder},
      // One trailing '/' goes; the probe then sees a name that ends in '/', which finds nothing.
      {temp.Path("empty//"), folder + temp.Path("empty/")},
      {temp.Path("nested"), file + temp.Path("nested/DICOMDIR")},
      {temp.Path("plain"), file + temp.Path("plain/DICOMDIR")},
  };
  for (const auto& row : cases) {
    const std::string message = RaisedMessage([&] {
      std::string path;
      FindDicomDirFile(ToWide(row.first).c_str(), &path);
    });
    EXPECT_TRUE(IsPlaced(message, row.second, "DicomDirImpl")) << message;
  }
}

}  // namespace
}  // namespace halvorine
