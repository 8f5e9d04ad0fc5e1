// The VR of a tag for implicit encodings, from the text file "dicom_dictionary.txt". There is no
// built-in table: without the file the dictionary is empty, and GetVR answers "UN". (The build
// keeps the parse of the file that it ships, but takes it only for a file of exactly those bytes.)
// One line per tag, comments begin with "REM":
//
//   (0010,0010) VR="PN" VM="1" Name="Patient's Name"
//   (0029,1010) VR="OB" VM="1" Name="Some Header" Owner="SOME CREATOR"
//
// A group below 7 or an even group is standard, whatever Owner says; any other group is private
// and needs an Owner. VR holds a code of the parser's table, or "OW/OB" or "US or SS", which the
// parser folds.
#ifndef HALVORINE_ENGINE_DICTIONARY_DICOMDICTIONARY_H
#define HALVORINE_ENGINE_DICTIONARY_DICOMDICTIONARY_H

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace DicomEngine {

class DicomDictionary {
 public:
  // Only the VR of an entry is ever looked up, so an entry is its tag key (group in the high 16
  // bits) and the index of its VR among the distinct texts.
  struct Entry {
    std::uint32_t key;
    std::uint32_t vr;
  };

  DicomDictionary() = default;
  DicomDictionary(const DicomDictionary&) = delete;
  DicomDictionary& operator=(const DicomDictionary&) = delete;

  // The one of the process, empty until its first LoadDictionary and never freed.
  static DicomDictionary& GetInstance();

  // A name without '/' is looked for beside the host's executable. Loads once: the same name
  // again returns at once, another name fails. A file that can't be opened counts as loaded and
  // leaves the dictionary empty. A bad line fails the load and keeps the entries read before it,
  // as well as the name, so that a later load of that name goes on with them. A value of blanks
  // alone throws std::out_of_range.
  void LoadDictionary(const std::string& fileName);

  // The entry's VR; for an unknown tag "UL" when element is 0, else "UN" and a trace line at
  // level 2.
  std::string GetVR(std::uint16_t group, std::uint16_t element) const;
  // GetVR without the copy, for the parser's every implicit element. The text lives as long as
  // the dictionary.
  std::string_view FindVR(std::uint16_t group, std::uint16_t element) const;

  // The standard entries in ascending keys, and the VR text of an index that they hold.
  std::span<const Entry> StandardEntries() const;
  std::string_view VRText(std::uint32_t index) const { return vrTexts_[index]; }

 private:
  bool TakeShipped(int file, std::uint64_t size);
  void ParseFile(int file);
  void AddEntry(std::uint16_t group, std::uint16_t element, std::string_view vr,
                std::string_view owner);
  void AddPrivate(std::uint32_t key, std::string_view owner);
  void InsertStandard(std::uint32_t key, std::string_view vr);
  std::uint32_t InternVR(std::string_view vr);
  std::uint32_t InternOtherVR(std::string_view vr);
  std::uint32_t AddVRText(std::string_view vr);

  std::vector<Entry> standardEntries_;  // ascending keys
  std::span<const Entry> shippedEntries_;  // in place of them for the shipped file
  std::deque<std::string> vrTexts_;  // a deque, so that FindVR's views stay put
  // For a VR of two capitals, its index in vrTexts_ plus 1, or 0 while it isn't there; other
  // texts are searched for.
  std::array<std::uint32_t, 26 * 26> codeSlots_{};
  // Kept only to refuse a tag twice for one owner: no look-up reads private entries.
  std::map<std::string, std::set<std::uint32_t>, std::less<>> privateKeys_;
  std::string loadedFileName_;
};

// The bytes of a file, summed up for telling it from others.
struct FileDigest {
  std::uint64_t size = 0;
  std::uint64_t hash = 0;
};

// The digest of the file's bytes from its start, read with pread so that its offset stays where it
// is; nothing on a read error.
std::optional<FileDigest> DigestFile(int file);

// The parse of the dictionary file that the build ships, made from that file at build time: a load
// of those very bytes costs a digest instead of a parse.
struct ShippedDictionary {
  FileDigest digest;
  std::span<const std::string_view> vrTexts;  // the VR of each index, as the text parse numbers
  std::span<const DicomDictionary::Entry> entries;
};

// Null in the build's writer of the table itself.
const ShippedDictionary* GetShippedDictionary();

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_DICTIONARY_DICOMDICTIONARY_H
