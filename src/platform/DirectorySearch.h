// What stands in for FindFirstFileA and FindNextFileA: entries answer to a name without regard
// to ASCII case, as on Windows, since discs mounted on Linux often show lower-case names.
#ifndef HALVORINE_PLATFORM_DIRECTORYSEARCH_H
#define HALVORINE_PLATFORM_DIRECTORYSEARCH_H

#include <string>
#include <string_view>
#include <vector>

namespace halvorine {

struct DirectoryEntry {
  std::string name;  // as the file system stores it
  bool isDirectory = false;
};

// Whether anything (file, folder, device) stands at path.
bool EntryExists(const std::string& path);

// The entries of folder that answer to name: the exact name first, then the others in byte order.
// Gives false, and no entries, when the folder can't be listed.
bool FindEntries(const std::string& folder, std::string_view name,
                 std::vector<DirectoryEntry>* entries);

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_DIRECTORYSEARCH_H
