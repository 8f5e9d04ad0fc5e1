#include "platform/DirectorySearch.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace halvorine {
namespace {

// Entries are given and reported as words: "name" a file, "name/" a folder, "name>target" a
// link (made only in the folder; the found entries carry no target).
TEST(DirectorySearchTest, FindsNamesWithoutRegardToCaseExactNameFirst) {
  const struct {
    const char* name;
    const char* searched;
    const char* entries;
    const char* expected;
  } cases[] = {
      {"nothing answers", "DICOMDIR", "DICOMDIR.bak xDICOMDIR DICOMDI", ""},
      {"exact wins over byte order", "DICOMDIR", "dicomdir DicomDir DICOMDIR DICOMDIr",
       "DICOMDIR DICOMDIr DicomDir dicomdir"},
      // Upper case sorts first in byte order, so only a name in lower case shows the exact rule.
      {"exact name that sorts last", "dicomdir", "DICOMDIR dicomdir DicomDir",
       "dicomdir DICOMDIR DicomDir"},
      {"folders reported as folders", "DICOMDIR", "dicomdir DICOMDIR/ DicomDir/",
       "DICOMDIR/ DicomDir/ dicomdir"},
      {"links followed, a broken one a file", "DICOMDIR",
       "target/ DICOMDIR>target dicomdir>missing", "DICOMDIR/ dicomdir"},
      {"only ascii letters fold", "DICOMDIR", "DIC\xC3\x96MDIR dic\xC3\xB6mdir", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempFolder temp;
    std::istringstream entries(c.entries);
    for (std::string entry; entries >> entry;) {
      const std::size_t link = entry.find('>');
      if (link != std::string::npos) {
        ASSERT_EQ(symlink(temp.Path(entry.substr(link + 1)).c_str(),
                          temp.Path(entry.substr(0, link)).c_str()),
                  0);
      } else if (entry.back() == '/') {
        temp.MakeFolder(entry);
      } else {
        WriteWholeFile(temp.Path(entry), "x");
      }
    }
    std::vector<DirectoryEntry> found{{"stale", true}};
    EXPECT_TRUE(FindEntries(temp.Path(), c.searched, &found));
    std::string described;
    for (const DirectoryEntry& entry : found) {
      described += (described.empty() ? "" : " ") + entry.name + (entry.isDirectory ? "/" : "");
    }
    EXPECT_EQ(described, c.expected);
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
