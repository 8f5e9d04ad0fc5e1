// Turns the Referenced File ID of an image record into a path on this disc. The File ID's '\'
// (and any '/') separate components; a component that is empty, "." or ".." would lead outside
// the folder and is refused. The path is the folder, '/', and the components joined by '/'.
// Discs mounted on Linux often show other cases than the File ID and ISO 9660 version suffixes
// (";1"), so each component is looked up in its folder's listing: exactly first, then without
// regard to ASCII case and suffix. Each folder is listed at most once in the resolver's life,
// one load; when a component isn't found, the path stays as formed.
#ifndef HALVORINE_READING_IMAGEPATHRESOLVER_H
#define HALVORINE_READING_IMAGEPATHRESOLVER_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace halvorine {

class ImagePathResolver {
 public:
  explicit ImagePathResolver(std::string folder) : folder_(std::move(folder)) {}

  // Puts the components of fileId with its trailing blanks dropped into components; false when
  // one of them would lead outside the folder.
  static bool SplitFileId(std::string_view fileId, std::vector<std::string_view>& components);

  // The path of components below the folder, in the names as stored where all of them are found.
  // The text holds until the next call: a load resolves one image after the other.
  const std::string& Resolve(const std::vector<std::string_view>& components);

 private:
  // A folder that can't be listed has no names.
  struct Listing {
    std::unordered_set<std::string> names;
    // Folded name to the first stored name in byte order that folds to it.
    std::unordered_map<std::string, std::string_view> folded;
  };

  const std::string& Formed(const std::vector<std::string_view>& components);
  // The folder below this one as stored, or nothing when a component isn't found.
  std::optional<std::string> StoredFolder(std::span<const std::string_view> components);
  const Listing& ListingOf(const std::string& folder);
  // The stored name that answers to component in folder, or empty.
  std::string_view FindStoredName(const std::string& folder, std::string_view component);

  std::string folder_;
  std::unordered_map<std::string, Listing> listings_;
  std::vector<std::string> lastFolder_;
  std::optional<std::string> lastStoredFolder_;
  std::string path_;  // the last path resolved, its room kept for the next
};

}  // namespace halvorine

#endif  // HALVORINE_READING_IMAGEPATHRESOLVER_H
