#include "platform/DirectorySearch.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "TempFolder.h"

namespace halvorine {
namespace {

std::vector<std::string> Describe(const std::vector<DirectoryEntry>& entries) {
  std::vector<std::string> described;
  for (const DirectoryEntry& entry : entries) {
    described.push_back(entry.name + (entry.isDirectory ? "/" : ""));
  }
  return described;
}

struct SearchCase {
  const char* name;
  std::vector<std::string> files;
  std::vector<std::string> folders;
  std::vector<std::string> expected;  // a folder with a trailing '/'
  const char* searched = "DICOMDIR";
  std::vector<std::pair<std::string, std::string>> links = {};  // name, target
};

TEST(DirectorySearchTest, FindsNamesWithoutRegardToCaseExactNameFirst) {
  const SearchCase cases[] = {
      {"nothing answers", {"DICOMDIR.bak", "xDICOMDIR", "DICOMDI"}, {}, {}},
      {"lower case only", {"dicomdir"}, {}, {"dicomdir"}},
      {"exact wins over byte order",
       {"dicomdir", "DicomDir", "DICOMDIR", "DICOMDIr"},
       {},
       {"DICOMDIR", "DICOMDIr", "DicomDir", "dicomdir"}},
      {"byte order without the exact name",
       {"dicomdir", "DicomDir", "DICOMDIr"},
       {},
       {"DICOMDIr", "DicomDir", "dicomdir"}},
      // Upper case sorts first in byte order, so only a name in lower case shows the exact rule.
      {"exact name that sorts last",
       {"DICOMDIR", "dicomdir", "DicomDir"},
       {},
       {"dicomdir", "DICOMDIR", "DicomDir"},
       "dicomdir"},
      {"folders reported as folders",
       {"dicomdir"},
       {"DICOMDIR", "DicomDir"},
       {"DICOMDIR/", "DicomDir/", "dicomdir"}},
      {"links followed, a broken one a file",
       {},
       {"target"},
       {"DICOMDIR/", "dicomdir"},
       "DICOMDIR",
       {{"DICOMDIR", "target"}, {"dicomdir", "missing"}}},
      {"only ascii letters fold", {"DIC\xC3\x96MDIR", "dic\xC3\xB6mdir"}, {}, {}},
  };
  for (const SearchCase& c : cases) {
    TempFolder temp;
    for (const std::string& file : c.files) WriteWholeFile(temp.Path(file), "x");
    for (const std::string& folder : c.folders) temp.MakeFolder(folder);
    for (const auto& [name, target] : c.links) {
      ASSERT_EQ(symlink(temp.Path(target).c_str(), temp.Path(name).c_str()), 0) << c.name;
    }
    std::vector<DirectoryEntry> entries{{"stale", true}};
    EXPECT_TRUE(FindEntries(temp.Path(), c.searched, &entries)) << c.name;
    EXPECT_EQ(Describe(entries), c.expected) << c.name;
  }
}

// A folder that can't be listed gives false and no entries; a broken link stands.
TEST(DirectorySearchTest, FailuresAndEntryExists) {
  TempFolder temp;
  std::vector<DirectoryEntry> entries{{"stale", false}};
  EXPECT_FALSE(FindEntries(temp.Path("missing"), "DICOMDIR", &entries));
  EXPECT_TRUE(entries.empty());
  WriteWholeFile(temp.Path("file"), "");
  ASSERT_EQ(symlink(temp.Path("missing").c_str(), temp.Path("broken").c_str()), 0);
  EXPECT_TRUE(EntryExists(temp.Path("file")));
  EXPECT_TRUE(EntryExists(temp.Path("broken")));
  EXPECT_FALSE(EntryExists(temp.Path("missing")));
  EXPECT_FALSE(EntryExists(""));
}

}  // namespace
}  // namespace halvorine
