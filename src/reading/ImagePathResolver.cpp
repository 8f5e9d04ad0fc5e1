#include "reading/ImagePathResolver.h"

#include <dirent.h>

#include <algorithm>
#include <memory>

namespace halvorine {
namespace {

char LowerAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// The name without an ISO 9660 version suffix ";<digits>".
std::string_view WithoutVersion(std::string_view name) {
  const std::size_t mark = name.rfind(';');
  if (mark == std::string_view::npos || mark + 1 == name.size()) return name;
  const bool digits = std::all_of(name.begin() + static_cast<std::ptrdiff_t>(mark) + 1, name.end(),
                                  [](char c) { return c >= '0' && c <= '9'; });
  return digits ? name.substr(0, mark) : name;
}

// The key under which names answer alike: ASCII lower case, without a version suffix.
std::string Fold(std::string_view name) {
  const std::string_view bare = WithoutVersion(name);
  std::string folded(bare.size(), '\0');
  std::transform(bare.begin(), bare.end(), folded.begin(), LowerAscii);
  return folded;
}

}  // namespace

bool ImagePathResolver::SplitFileId(std::string_view fileId,
                                    std::vector<std::string_view>& components) {
  while (!fileId.empty() && fileId.back() == ' ') fileId.remove_suffix(1);
  components.clear();
  std::size_t start = 0;
  for (std::size_t at = 0; at <= fileId.size(); ++at) {
    if (at < fileId.size() && fileId[at] != '\\' && fileId[at] != '/') continue;
    const std::string_view component = fileId.substr(start, at - start);
    if (component.empty() || component == "." || component == "..") return false;
    components.push_back(component);
    start = at + 1;
  }
  return true;
}

// The images of a series share their folder, so the folder of the last path is kept and the
// next one in the same folder looks up its file name alone.
const std::string& ImagePathResolver::Resolve(const std::vector<std::string_view>& components) {
  if (components.empty()) return folder_;
  const std::span<const std::string_view> folder(components.data(), components.size() - 1);
  if (!std::ranges::equal(folder, lastFolder_)) {
    lastFolder_.assign(folder.begin(), folder.end());
    lastStoredFolder_ = StoredFolder(folder);
  }
  if (!lastStoredFolder_) return Formed(components);
  const std::string_view name = FindStoredName(*lastStoredFolder_, components.back());
  if (name.empty()) return Formed(components);
  path_.assign(*lastStoredFolder_).append(1, '/').append(name);
  return path_;
}

std::optional<std::string> ImagePathResolver::StoredFolder(
    std::span<const std::string_view> components) {
  std::string stored = folder_;
  for (const std::string_view component : components) {
    const std::string_view name = FindStoredName(stored, component);
    if (name.empty()) return std::nullopt;
    stored += '/';
    stored.append(name);
  }
  return stored;
}

const std::string& ImagePathResolver::Formed(const std::vector<std::string_view>& components) {
  path_.assign(folder_);
  for (const std::string_view component : components) path_.append(1, '/').append(component);
  return path_;
}

const ImagePathResolver::Listing& ImagePathResolver::ListingOf(const std::string& folder) {
  const auto [place, added] = listings_.try_emplace(folder);
  Listing& listing = place->second;
  if (!added) return listing;
  std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
  if (!entries) return listing;
  while (const dirent* entry = readdir(entries.get())) listing.names.emplace(entry->d_name);
  // In byte order, so that of several names that answer alike the first one wins.
  std::vector<std::string_view> sorted(listing.names.begin(), listing.names.end());
  std::sort(sorted.begin(), sorted.end());
  for (const std::string_view name : sorted) listing.folded.try_emplace(Fold(name), name);
  return listing;
}

std::string_view ImagePathResolver::FindStoredName(const std::string& folder,
                                                   std::string_view component) {
  const Listing& listing = ListingOf(folder);
  const auto exact = listing.names.find(std::string(component));
  if (exact != listing.names.end()) return *exact;
  const auto folded = listing.folded.find(Fold(component));
  return folded == listing.folded.end() ? std::string_view() : folded->second;
}

}  // namespace halvorine
