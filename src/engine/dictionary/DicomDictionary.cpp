#include "engine/dictionary/DicomDictionary.h"

#include <algorithm>
#include <fstream>
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
  std::string key;
  std::string value;
};

std::uint32_t KeyOf(std::uint16_t group, std::uint16_t element) {
  return std::uint32_t{group} << 16 | element;
}

// Blanks, and only blanks, off both ends. A text of blanks alone has no first character to keep
// and fails with a standard out-of-range error, not a MyException.
std::string TrimBlanks(std::string_view text) {
  if (text.empty()) return {};
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    throw std::out_of_range("The dictionary line holds a text of blanks alone.");
  }
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
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
std::optional<KeyValue> ParseKeyValue(const std::string& line, std::size_t* position) {
  const std::size_t keyStart = line.find_first_not_of(" \t", *position);
  if (keyStart == std::string::npos) return std::nullopt;
  const std::size_t equals = line.find('=', keyStart);
  if (equals == std::string::npos) return std::nullopt;
  const std::size_t open = line.find('"', equals + 1);
  if (open == std::string::npos) return std::nullopt;
  const std::size_t close = std::min(line.find('"', open + 1), line.size());
  *position = std::min(close + 1, line.size());
  const std::string_view text(line);
  return KeyValue{TrimBlanks(text.substr(keyStart, equals - keyStart)),
                  TrimBlanks(text.substr(open + 1, close - open - 1))};
}

void SetEntryField(DictionaryEntry* entry, const KeyValue& pair) {
  if (pair.key == "VR") {
    entry->VR = pair.value;
  } else if (pair.key == "VM") {
    entry->VM = pair.value;
  } else if (pair.key == "Name") {
    entry->Name = pair.value;
  } else if (pair.key == "Owner") {
    entry->Owner = pair.value;
  }
}

void InsertEntry(EntryTable& table, Tag tag, DictionaryEntry entry) {
  if (!table.emplace(KeyOf(tag.group, tag.element), std::move(entry)).second) {
    halvorine::Raise(kUnit, __LINE__,
                     "The standard DICOM dictionary file contains a duplicated group-element "
                     "paire.");
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
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const bool endedByLineFeed = !file.eof();
    if (endedByLineFeed && line.ends_with('\r')) line.pop_back();
    ParseDictionaryLine(line);
  }
}

std::string DicomDictionary::GetVR(std::uint16_t group, std::uint16_t element) const {
  const auto found = standardEntries_.find(KeyOf(group, element));
  if (found != standardEntries_.end()) return found->second.VR;
  if (element == 0) return "UL";
  halvorine::Trace(halvorine::FormatBounded(halvorine::kMessageBufferSize,
                                            "The standard DICOM dictionary does not contain the "
                                            "0x%04X group and 0x%04X element.",
                                            group, element),
                   2);
  return "UN";
}

void DicomDictionary::ParseDictionaryLine(const std::string& line) {
  if (line.empty() || line.starts_with("REM")) return;
  const std::size_t sectionEnd = line.find(')');
  const std::string_view section = sectionEnd == std::string::npos
                                       ? std::string_view()
                                       : std::string_view(line).substr(0, sectionEnd + 1);
  const Tag tag = ParseTagSection(section);
  DictionaryEntry entry;
  for (std::size_t position = section.size(); const auto pair = ParseKeyValue(line, &position);) {
    SetEntryField(&entry, *pair);
  }
  if (tag.group < 7 || tag.group % 2 == 0) {
    InsertEntry(standardEntries_, tag, std::move(entry));
    return;
  }
  if (entry.Owner.empty()) {
    halvorine::Raise(kUnit, __LINE__,
                     "The dictionary found a private tag (%4x, %4x) tag whithout owner.", tag.group,
                     tag.element);
  }
  // Looked up before entry is moved into it.
  EntryTable& ownerTable = privateEntries_[entry.Owner];
  InsertEntry(ownerTable, tag, std::move(entry));
}

}  // namespace DicomEngine
