#include "engine/dictionary/DicomDictionary.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "platform/ModulePath.h"
#include "support/MyException.h"
#include "support/TraceLog.h"
#include "support/Utilities.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "DicomDictionary";

struct Tag {
  std::uint16_t group;
  std::uint16_t element;
};

struct KeyValue {
  std::string_view key;
  std::string_view value;
};

std::uint32_t KeyOf(std::uint16_t group, std::uint16_t element) {
  return std::uint32_t{group} << 16 | element;
}

// Blanks, and only blanks, off both ends. A text of blanks alone has no first character to keep
// and fails with a standard out-of-range error, not a MyException.
std::string_view TrimBlanks(std::string_view text) {
  if (text.empty()) return {};
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  if (text.empty()) throw std::out_of_range("The dictionary line holds a text of blanks alone.");
  while (text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Digit by digit in 16 bits; a character that is no hex digit still counts, as its code minus
// that of '0'.
std::uint16_t ParseHexNumber(std::string_view text) {
  if (text.empty()) halvorine::Raise(kUnit, __LINE__, "Dictionary expects a numeric value.");
  std::uint16_t value = 0;
  for (const char digit : text) {
    value = static_cast<std::uint16_t>(value * 16 + halvorine::HexDigitValue(digit));
  }
  return value;
}

// "(gggg,eeee)", the section being the line up to its first ')'.
Tag ParseTagSection(std::string_view section) {
  const std::size_t comma = section.find(',');
  if (section.empty() || section.front() != '(' || section.back() != ')' ||
      comma == std::string_view::npos) {
    halvorine::Raise(kUnit, __LINE__,
                     "The dictionary group element section is not well formatted.");
  }
  return Tag{ParseHexNumber(section.substr(1, comma - 1)),
             ParseHexNumber(section.substr(comma + 1, section.size() - comma - 2))};
}

// The pair Key="Value" that begins at *position, blanks and tabs before it skipped; *position
// moves behind its closing quote, or to the end of the line when that is missing. Nothing when
// no '=' with an opening quote behind it is left.
// find() of one character, as a plain loop: the distances in a line are a few characters, shorter
// than a library call's set-up.
std::size_t FindFrom(std::string_view line, char wanted, std::size_t from) {
  while (from < line.size() && line[from] != wanted) ++from;
  return from < line.size() ? from : std::string_view::npos;
}

std::optional<KeyValue> ParseKeyValue(std::string_view line, std::size_t* position) {
  std::size_t keyStart = *position;
  while (keyStart < line.size() && (line[keyStart] == ' ' || line[keyStart] == '\t')) ++keyStart;
  if (keyStart >= line.size()) return std::nullopt;
  const std::size_t equals = FindFrom(line, '=', keyStart);
  if (equals == std::string_view::npos) return std::nullopt;
  const std::size_t open = FindFrom(line, '"', equals + 1);
  if (open == std::string_view::npos) return std::nullopt;
  const std::size_t close = std::min(FindFrom(line, '"', open + 1), line.size());
  *position = std::min(close + 1, line.size());
  return KeyValue{TrimBlanks(line.substr(keyStart, equals - keyStart)),
                  TrimBlanks(line.substr(open + 1, close - open - 1))};
}

void RaiseDuplicate() {
  halvorine::Raise(kUnit, __LINE__,
                   "The standard DICOM dictionary file contains a duplicated group-element "
                   "paire.");
}

// The whole file, or nothing when it can't be opened or read.
std::optional<std::string> ReadWholeFile(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "r"),
                                                            &std::fclose);
  if (!file) return std::nullopt;
  // Read in place, in steps of the file's size as it was opened, so that nothing is copied twice.
  struct stat info {};
  const std::size_t step = fstat(fileno(file.get()), &info) == 0 && info.st_size > 0
                               ? static_cast<std::size_t>(info.st_size) + 1
                               : 65536;
  std::string content;
  for (;;) {
    const std::size_t had = content.size();
    content.resize(had + step);
    const std::size_t count = std::fread(content.data() + had, 1, step, file.get());
    content.resize(had + count);
    if (count < step) return content;
  }
}

}  // namespace

DicomDictionary& DicomDictionary::GetInstance() {
  static DicomDictionary instance;
  return instance;
}

void DicomDictionary::LoadDictionary(const std::string& fileName) {
  if (fileName.empty()) {
    halvorine::Raise(kUnit, __LINE__, "The DICOM dictionary file name is NULL or empty.");
  }
  const std::string path = fileName.find(halvorine::kPathSeparator) == std::string::npos
                               ? halvorine::GetModuleDirectory() + fileName
                               : fileName;
  if (!loadedFileName_.empty()) {
    if (loadedFileName_ == path) return;
    halvorine::Raise(kUnit, __LINE__,
                     "Already loaded the %s dictionary file.\r\nAttempt to load a  second "
                     "different DICOM compatibility file: %s.",
                     loadedFileName_.c_str(), path.c_str());
  }
  // Set before reading: neither a missing file nor a bad line is tried again.
  loadedFileName_ = path;
  const std::optional<std::string> content = ReadWholeFile(path);
  if (!content) return;
  // Lines end with a line feed, a carriage return before it dropped; the last needs none.
  std::string_view rest(*content);
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    if (end == std::string_view::npos) {
      rest = {};
    } else {
      rest.remove_prefix(end + 1);
      if (line.ends_with('\r')) line.remove_suffix(1);
    }
    ParseDictionaryLine(line);
  }
}

std::string DicomDictionary::GetVR(std::uint16_t group, std::uint16_t element) const {
  return std::string(FindVR(group, element));
}

std::string_view DicomDictionary::FindVR(std::uint16_t group, std::uint16_t element) const {
  const std::uint32_t key = KeyOf(group, element);
  const auto found = std::ranges::lower_bound(standardEntries_, key, {}, &Entry::key);
  if (found != standardEntries_.end() && found->key == key) return vrTexts_[found->vr];
  if (element == 0) return "UL";
  halvorine::Trace(halvorine::FormatBounded(halvorine::kMessageBufferSize,
                                            "The standard DICOM dictionary does not contain the "
                                            "0x%04X group and 0x%04X element.",
                                            group, element),
                   2);
  return "UN";
}

void DicomDictionary::ParseDictionaryLine(std::string_view line) {
  if (line.empty() || line.starts_with("REM")) return;
  const std::size_t sectionEnd = line.find(')');
  const std::string_view section =
      sectionEnd == std::string_view::npos ? std::string_view() : line.substr(0, sectionEnd + 1);
  const Tag tag = ParseTagSection(section);
  std::string_view vr;
  std::string_view owner;
  for (std::size_t position = section.size(); const auto pair = ParseKeyValue(line, &position);) {
    if (pair->key == "VR") vr = pair->value;
    if (pair->key == "Owner") owner = pair->value;
  }
  const std::uint32_t key = KeyOf(tag.group, tag.element);
  if (tag.group < 7 || tag.group % 2 == 0) {
    InsertStandard(key, vr);
    return;
  }
  if (owner.empty()) {
    halvorine::Raise(kUnit, __LINE__,
                     "The dictionary found a private tag (%4x, %4x) tag whithout owner.", tag.group,
                     tag.element);
  }
  auto table = privateKeys_.find(owner);
  if (table == privateKeys_.end()) table = privateKeys_.try_emplace(std::string(owner)).first;
  if (!table->second.insert(key).second) RaiseDuplicate();
}

// The file lists its tags in ascending order, so an entry mostly goes on the end.
void DicomDictionary::InsertStandard(std::uint32_t key, std::string_view vr) {
  auto place = standardEntries_.end();
  if (!standardEntries_.empty() && standardEntries_.back().key >= key) {
    place = std::ranges::lower_bound(standardEntries_, key, {}, &Entry::key);
    if (place->key == key) RaiseDuplicate();
  }
  standardEntries_.insert(place, Entry{key, InternVR(vr)});
}

std::uint32_t DicomDictionary::InternVR(std::string_view vr) {
  for (std::size_t index = 0; index < vrTexts_.size(); ++index) {
    const std::string& text = vrTexts_[index];
    if (text.size() == vr.size() && std::equal(vr.begin(), vr.end(), text.begin())) {
      return static_cast<std::uint32_t>(index);
    }
  }
  vrTexts_.emplace_back(vr);
  return static_cast<std::uint32_t>(vrTexts_.size() - 1);
}

}  // namespace DicomEngine
