#include "reading/DirectoryLocation.h"

#include <vector>

#include "platform/DirectorySearch.h"
#include "platform/ModulePath.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

constexpr char kUnit[] = "DicomDirImpl";
constexpr char kFileName[] = "DICOMDIR";

}  // namespace

bool FindDicomDirFile(const char16_t* directory, std::string* path) {
  std::string folder = ToNarrow(directory);
  if (!folder.empty() && folder.back() == kPathSeparator) folder.pop_back();
  // As FindFirstFileA, the probe finds nothing for a name that ends in a separator, so of two
  // trailing separators the one left makes the folder count as missing.
  const bool found = !folder.empty() && folder.back() != kPathSeparator && EntryExists(folder);
  if (!found) Raise(kUnit, __LINE__, "Can't open folder %s", folder.c_str());
  folder += kPathSeparator;
  std::vector<DirectoryEntry> entries;
  FindEntries(folder, kFileName, &entries);
  if (entries.empty()) {
    Raise(kUnit, __LINE__, "Can't open file %s", (folder + kFileName).c_str());
  }
  for (const DirectoryEntry& entry : entries) {
    if (!entry.isDirectory) {
      *path = folder + entry.name;
      return true;
    }
  }
  return false;
}

}  // namespace halvorine
