#include "platform/DirectorySearch.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "platform/ModulePath.h"

namespace halvorine {
namespace {

char LowerAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

// A link is followed, as Windows reports the target's attributes; a broken one counts as a file.
bool IsDirectory(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

bool EntryExists(const std::string& path) {
  struct stat info {};
  return !path.empty() && lstat(path.c_str(), &info) == 0;
}

bool FindEntries(const std::string& folder, std::string_view name,
                 std::vector<DirectoryEntry>* entries) {
  entries->clear();
  std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.c_str()), closedir);
  if (!listing) return false;
  std::vector<std::string> names;
  while (const dirent* entry = readdir(listing.get())) {
    if (EqualsIgnoringAsciiCase(entry->d_name, name)) names.emplace_back(entry->d_name);
  }
  std::sort(names.begin(), names.end(), [name](const std::string& a, const std::string& b) {
    if ((a == name) != (b == name)) return a == name;
    return a < b;
  });
  std::string prefix = folder;
  if (!prefix.empty() && prefix.back() != kPathSeparator) prefix += kPathSeparator;
  for (std::string& found : names) {
    const bool directory = IsDirectory(prefix + found);
    entries->push_back(DirectoryEntry{std::move(found), directory});
  }
  return true;
}

}  // namespace halvorine
