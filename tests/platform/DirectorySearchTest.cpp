#include "platform/DirectorySearch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
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
};

TEST(DirectorySearchTest, FindsNamesWithoutRegardToCaseExactNameFirst) {
  const SearchCase cases[] = {
      {"nothing answers", {"DICOMDIR.bak", "xDICOMDIR", "DICOMDI"}, {}, {}},
      {"exact only", {"DICOMDIR", "other"}, {}, {"DICOMDIR"}},
      {"lower case only", {"dicomdir"}, {}, {"dicomdir"}},
      {"exact wins over byte order",
       {"dicomdir", "DicomDir", "DICOMDIR", "DICOMDIr"},
       {},
       {"DICOMDIR", "DICOMDIr", "DicomDir", "dicomdir"}},
      {"byte order without the exact name",
       {"dicomdir", "DicomDir", "DICOMDIr"},
       {},
       {"DICOMDIr", "DicomDir", "dicomdir"}},
      {"folders reported as folders",
       {"dicomdir"},
       {"DICOMDIR", "DicomDir"},
       {"DICOMDIR/", "DicomDir/", "dicomdir"}},
      {"only ascii letters fold", {"DIC\xC3\x96MDIR", "dic\xC3\xB6mdir"}, {}, {}},
  };
  for (const SearchCase& c : cases) {
    TempFolder temp;
    for (const std::string& file : c.files) WriteWholeFile(temp.Path(file), "x");
    for (const std::string& folder : c.folders) temp.MakeFolder(folder);
    std::vector<DirectoryEntry> entries{{"stale", true}};
    EXPECT_TRUE(FindEntries(temp.Path(), "DICOMDIR", &entries)) << c.name;
    EXPECT_EQ(Describe(entries), c.expected) << c.name;
  }
}

// Upper case sorts first in byte order, so only a name in lower case shows the exact-name rule.
TEST(DirectorySearchTest, TheExactNameComesFirstEvenWhenItSortsLast) {
  TempFolder temp;
  for (const char* file : {"DICOMDIR", "dicomdir", "DicomDir"}) WriteWholeFile(temp.Path(file), "");
  std::vector<DirectoryEntry> entries;
  ASSERT_TRUE(FindEntries(temp.Path(), "dicomdir", &entries));
  EXPECT_EQ(Describe(entries), (std::vector<std::string>{"dicomdir", "DICOMDIR", "DicomDir"}));
}

TEST(DirectorySearchTest, FolderMayEndInASeparator) {
  TempFolder temp;
  temp.MakeFolder("DicomDir");
  std::vector<DirectoryEntry> entries;
  ASSERT_TRUE(FindEntries(temp.Path() + "/", "dicomdir", &entries));
  EXPECT_EQ(Describe(entries), std::vector<std::string>{"DicomDir/"});
}

TEST(DirectorySearchTest, LinksAreFollowedAndABrokenOneCountsAsAFile) {
  TempFolder temp;
  temp.MakeFolder("target");
  ASSERT_EQ(symlink(temp.Path("target").c_str(), temp.Path("DICOMDIR").c_str()), 0);
  ASSERT_EQ(symlink(temp.Path("missing").c_str(), temp.Path("dicomdir").c_str()), 0);
  std::vector<DirectoryEntry> entries;
  ASSERT_TRUE(FindEntries(temp.Path(), "DICOMDIR", &entries));
  EXPECT_EQ(Describe(entries), (std::vector<std::string>{"DICOMDIR/", "dicomdir"}));
}

TEST(DirectorySearchTest, AFolderThatCantBeListedGivesFalseAndNoEntries) {
  TempFolder temp;
  WriteWholeFile(temp.Path("file"), "x");
  const std::string cases[] = {temp.Path("missing"), temp.Path("file"), ""};
  for (const std::string& folder : cases) {
    std::vector<DirectoryEntry> entries{{"stale", false}};
    EXPECT_FALSE(FindEntries(folder, "DICOMDIR", &entries)) << folder;
    EXPECT_TRUE(entries.empty()) << folder;
  }
}

TEST(DirectorySearchTest, AnUnreadableFolderGivesFalse) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads every folder";
  TempFolder temp;
  const std::string locked = temp.MakeFolder("locked");
  WriteWholeFile(locked + "/DICOMDIR", "x");
  ASSERT_EQ(chmod(locked.c_str(), 0), 0);
  std::vector<DirectoryEntry> entries;
  EXPECT_FALSE(FindEntries(locked, "DICOMDIR", &entries));
  EXPECT_TRUE(entries.empty());
  chmod(locked.c_str(), 0700);
}

TEST(DirectorySearchTest, EntryExistsForAnythingThatStands) {
  TempFolder temp;
  WriteWholeFile(temp.Path("file"), "");
  temp.MakeFolder("folder");
  ASSERT_EQ(symlink(temp.Path("missing").c_str(), temp.Path("broken").c_str()), 0);
  EXPECT_TRUE(EntryExists(temp.Path("file")));
  EXPECT_TRUE(EntryExists(temp.Path("folder")));
  EXPECT_TRUE(EntryExists(temp.Path("broken")));
  EXPECT_TRUE(EntryExists("/dev/null"));
  EXPECT_FALSE(EntryExists(temp.Path("missing")));
  EXPECT_FALSE(EntryExists(temp.Path("file/below")));
  EXPECT_FALSE(EntryExists(""));
}

}  // namespace
}  // namespace halvorine
