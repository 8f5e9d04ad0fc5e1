#include "engine/dictionary/DicomDictionary.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "platform/FileDescriptor.h"
#include "platform/ModulePath.h"
#include "support/MyException.h"
#include "support/TraceLog.h"
#include "support/Utilities.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "DicomDictionary";

// The file is read in blocks of this size into one buffer, which a longer line makes grow.
constexpr std::size_t kBlockSize = 65536;
// Behind a buffer's data: room for a line feed put behind a last line that has none, and for
// FindValueEnd's reading of a whole word that begins before a line feed.
constexpr std::size_t kSlack = sizeof(std::uint64_t);
// Fewer than the shipped file's 57 bytes a line, so that its entries fit in what is reserved.
constexpr std::size_t kBytesPerEntry = 50;
// Some ten times the standard's count, so that the size of a hostile file can't reserve much.
constexpr std::size_t kMostEntriesReserved = 65536;
// A digest reads this much at a time, into a buffer on the stack: a multiple of the word.
constexpr std::size_t kDigestBlockSize = 16384;
// Words are mixed into this many running hashes in turn, which the processor works on at once: a
// step is one word for each.
constexpr std::size_t kDigestLanes = 4;
constexpr std::size_t kDigestStep = kDigestLanes * sizeof(std::uint64_t);

// What a byte is to the scanner, in kCharacters: its HexDigitValue in the low 16 bits, for the
// tag section, and above them the marks of the characters that a search stops at.
constexpr std::uint32_t kFeed = 1u << 16;
constexpr std::uint32_t kComma = 1u << 17;
constexpr std::uint32_t kParen = 1u << 18;
constexpr std::uint32_t kEquals = 1u << 19;
constexpr std::uint32_t kQuote = 1u << 20;
constexpr std::uint32_t kBlankOrTab = 1u << 21;

std::array<std::uint32_t, 256> MakeCharacters() {
  std::array<std::uint32_t, 256> characters{};
  for (std::size_t code = 0; code < characters.size(); ++code) {
    characters[code] =
        static_cast<std::uint16_t>(halvorine::HexDigitValue(static_cast<char>(code)));
  }
  const std::pair<char, std::uint32_t> marks[] = {
      {'\n', kFeed}, {',', kComma},      {')', kParen},      {'=', kEquals},
      {'"', kQuote}, {' ', kBlankOrTab}, {'\t', kBlankOrTab}};
  for (const auto& [character, mark] : marks) {
    characters[static_cast<unsigned char>(character)] |= mark;
  }
  return characters;
}

// Made when the component is loaded, so that a look-up has no guard to pass.
const std::array<std::uint32_t, 256> kCharacters = MakeCharacters();

std::uint32_t CharacterAt(const char* text) {
  return kCharacters[static_cast<unsigned char>(*text)];
}

std::uint32_t KeyOf(std::uint16_t group, std::uint16_t element) {
  return std::uint32_t{group} << 16 | element;
}

bool IsCapital(char letter) { return letter >= 'A' && letter <= 'Z'; }

[[noreturn]] void RaiseBlanksAlone() {
  throw std::out_of_range("The dictionary line holds a text of blanks alone.");
}

// Blanks, and only blanks, off both ends. A text of blanks alone has no first character to keep
// and fails with a standard out-of-range error, not a MyException. Inlined, as g++ wouldn't: it
// runs for every key and value.
[[gnu::always_inline]] inline std::string_view TrimBlanks(std::string_view text) {
  if (text.empty()) return {};
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  if (text.empty()) RaiseBlanksAlone();
  while (text.back() == ' ') text.remove_suffix(1);
  return text;
}

// The first byte from text on with one of the marks or the line feed, byte by byte: keys and the
// gaps before quotes are a few bytes, which branch prediction runs ahead of.
const char* FindInLine(const char* text, std::uint32_t marks) {
  while ((CharacterAt(text) & (marks | kFeed)) == 0) ++text;
  return text;
}

// The first '"' or line feed from text on, eight bytes at a time, for a value, which may be long.
// Both are below '#': the first byte below it in a word is flagged exactly (flags above it may
// come from borrows), and when it is neither, the search goes on behind it.
const char* FindValueEnd(const char* text) {
  static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  for (;;) {
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    const std::uint64_t flags = (word - kOnes * '#') & ~word & kHighBits;
    if (flags == 0) {
      text += sizeof word;
      continue;
    }
    text += std::countr_zero(flags) / 8;
    if (CharacterAt(text) & (kQuote | kFeed)) return text;
    ++text;
  }
}

// The end of the line whose line feed is at feed: a carriage return before it is no part of it,
// unless the feed was put there for a last line without one.
const char* LineEnd(const char* feed, const char* addedFeed) {
  return feed != addedFeed && feed[-1] == '\r' ? feed - 1 : feed;
}

// The number from text on up to a byte with one of the marks in ends, digit by digit in 16 bits:
// a character that is no hex digit still counts, as its code minus that of '0'.
const char* ScanNumber(const char* text, std::uint32_t ends, std::uint16_t* value) {
  for (std::uint32_t character; ((character = CharacterAt(text)) & ends) == 0; ++text) {
    *value = static_cast<std::uint16_t>(*value * 16 + character);
  }
  return text;
}

struct TagSection {
  std::uint16_t group;
  std::uint16_t element;
  const char* end;
};

// "(gggg,eeee)" at the start of the line, up to its first ')'.
TagSection ParseTagSection(const char* line) {
  TagSection tag{};
  const char* const comma = ScanNumber(line + 1, kComma | kParen | kFeed, &tag.group);
  const char* const paren =
      *comma == ',' ? ScanNumber(comma + 1, kParen | kFeed, &tag.element) : comma;
  if (line[0] != '(' || *comma != ',' || *paren != ')') {
    halvorine::Raise(kUnit, __LINE__,
                     "The dictionary group element section is not well formatted.");
  }
  if (comma == line + 1 || paren == comma + 1) {
    halvorine::Raise(kUnit, __LINE__, "Dictionary expects a numeric value.");
  }
  tag.end = paren + 1;
  return tag;
}

struct Pairs {
  std::string_view vr;
  std::string_view owner;
  const char* feed;
};

// The pairs Key="Value" from text to the line's feed, each after blanks and tabs. A pair without
// its closing quote runs to the end of the line; the pairs end where no '=' with an opening quote
// behind it is left. Only VR and Owner are kept, but every value is trimmed.
Pairs ParsePairs(const char* text, const char* addedFeed) {
  Pairs pairs{};
  for (;;) {
    while (CharacterAt(text) & kBlankOrTab) ++text;
    const char* const equals = FindInLine(text, kEquals);
    const char* const open = *equals == '=' ? FindInLine(equals + 1, kQuote) : equals;
    if (*open != '"') {
      pairs.feed = open;
      return pairs;
    }
    const char* const close = FindValueEnd(open + 1);
    const std::string_view key = TrimBlanks({text, equals});
    const std::string_view value =
        TrimBlanks({open + 1, *close == '"' ? close : LineEnd(close, addedFeed)});
    if (key == "VR") pairs.vr = value;
    if (key == "Owner") pairs.owner = value;
    if (*close != '"') {
      pairs.feed = close;
      return pairs;
    }
    text = close + 1;
  }
}

struct ParsedLine {
  bool isEntry;  // not for an empty line or a comment
  TagSection tag;
  Pairs pairs;
};

// The line that begins at line and ends with the first line feed from there; addedFeed is the
// feed put behind a last line that had none, which drops no carriage return. An empty line and a
// line that begins with "REM" are skipped; any other is an entry.
ParsedLine ParseLine(const char* line, const char* addedFeed) {
  const bool empty =
      line[0] == '\n' || (line[0] == '\r' && line[1] == '\n' && line + 1 != addedFeed);
  if (empty || (line[0] == 'R' && line[1] == 'E' && line[2] == 'M')) {
    return ParsedLine{false, {}, {{}, {}, FindInLine(line, kFeed)}};
  }
  const TagSection tag = ParseTagSection(line);
  return ParsedLine{true, tag, ParsePairs(tag.end, addedFeed)};
}

void RaiseDuplicate() {
  halvorine::Raise(kUnit, __LINE__,
                   "The standard DICOM dictionary file contains a duplicated group-element "
                   "paire.");
}

// Hands the file to parse(begin, end, addedFeed) in runs of whole lines, each ending with a line
// feed. They are read in blocks into one buffer, rather than the whole file into a fresh one, so
// that fewer pages are touched: what follows a block's last feed is carried over to the next. At
// the end of the file or at a read error, a last line without a feed comes alone, with one put
// behind it at addedFeed.
template <class Parse>
void ReadLines(int file, Parse parse) {
  std::size_t capacity = kBlockSize;
  // Zeroed, so that FindValueEnd reads no indeterminate bytes behind the data.
  auto buffer = std::make_unique<char[]>(capacity + kSlack);
  std::size_t filled = 0;
  for (;;) {
    if (filled == capacity) {
      auto larger = std::make_unique<char[]>(capacity * 2 + kSlack);
      std::memcpy(larger.get(), buffer.get(), filled);
      buffer = std::move(larger);
      capacity *= 2;
    }
    const ssize_t count = read(file, buffer.get() + filled, capacity - filled);
    if (count <= 0) break;
    // The bytes carried over hold no feed.
    const std::string_view fresh(buffer.get() + filled, static_cast<std::size_t>(count));
    filled += fresh.size();
    const std::size_t feed = fresh.rfind('\n');
    if (feed == std::string_view::npos) continue;
    const char* const linesEnd = fresh.data() + feed + 1;
    parse(buffer.get(), linesEnd, nullptr);
    filled = static_cast<std::size_t>(buffer.get() + filled - linesEnd);
    std::memmove(buffer.get(), linesEnd, filled);
  }
  if (filled == 0) return;
  buffer[filled] = '\n';
  parse(buffer.get(), buffer.get() + filled + 1, buffer.get() + filled);
}

// A multiply and a shift, each one-to-one: files that differ in a single word differ in digest.
std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 32);
}

// Fills block from offset on, up to its size or the file's end; -1 on a read error.
ssize_t ReadBlock(int file, char* block, std::size_t size, std::uint64_t offset) {
  std::size_t filled = 0;
  while (filled < size) {
    const ssize_t count =
        pread(file, block + filled, size - filled, static_cast<off_t>(offset + filled));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return -1;
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(filled);
}

}  // namespace

std::optional<FileDigest> DigestFile(int file) {
  std::array<std::uint64_t, kDigestLanes> lanes{1, 2, 3, 4};
  std::uint64_t size = 0;
  // With a step of room behind the block for the zeros that fill the last one.
  alignas(std::uint64_t) char block[kDigestBlockSize + kDigestStep];
  for (;;) {
    const ssize_t count = ReadBlock(file, block, kDigestBlockSize, size);
    if (count < 0) return std::nullopt;
    // Zeros behind the file's last byte fill the last step; the size tells them apart.
    std::memset(block + count, 0, kDigestStep);
    const std::size_t steps = (static_cast<std::size_t>(count) + kDigestStep - 1) / kDigestStep;
    for (std::size_t step = 0; step < steps; ++step) {
      for (std::size_t lane = 0; lane < kDigestLanes; ++lane) {
        std::uint64_t word;
        std::memcpy(&word, block + step * kDigestStep + lane * sizeof word, sizeof word);
        lanes[lane] = Mix(lanes[lane], word);
      }
    }
    size += static_cast<std::uint64_t>(count);
    if (static_cast<std::size_t>(count) < kDigestBlockSize) break;
  }
  std::uint64_t hash = size;
  for (const std::uint64_t lane : lanes) hash = Mix(hash, lane);
  return FileDigest{size, hash};
}

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
  const halvorine::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() >= 0) ParseFile(file.get());
}

std::string DicomDictionary::GetVR(std::uint16_t group, std::uint16_t element) const {
  return std::string(FindVR(group, element));
}

std::string_view DicomDictionary::FindVR(std::uint16_t group, std::uint16_t element) const {
  const std::uint32_t key = KeyOf(group, element);
  const std::span<const Entry> entries = StandardEntries();
  const auto found = std::ranges::lower_bound(entries, key, {}, &Entry::key);
  if (found != entries.end() && found->key == key) return vrTexts_[found->vr];
  if (element == 0) return "UL";
  halvorine::Trace(halvorine::FormatBounded(halvorine::kMessageBufferSize,
                                            "The standard DICOM dictionary does not contain the "
                                            "0x%04X group and 0x%04X element.",
                                            group, element),
                   2);
  return "UN";
}

std::span<const DicomDictionary::Entry> DicomDictionary::StandardEntries() const {
  if (!shippedEntries_.empty()) return shippedEntries_;
  return standardEntries_;
}

// A file of the shipped size is digested first; when its bytes are the shipped ones, their parse
// is taken as it stands. Its entries need no private table: nothing reads that after a load.
bool DicomDictionary::TakeShipped(int file, std::uint64_t size) {
  const ShippedDictionary* const shipped = GetShippedDictionary();
  if (shipped == nullptr || shipped->digest.size != size) return false;
  const std::optional<FileDigest> digest = DigestFile(file);
  if (!digest || digest->size != size || digest->hash != shipped->digest.hash) return false;
  for (const std::string_view vr : shipped->vrTexts) AddVRText(vr);
  shippedEntries_ = shipped->entries;
  return true;
}

void DicomDictionary::ParseFile(int file) {
  struct stat info {};
  if (fstat(file, &info) == 0 && info.st_size > 0) {
    if (TakeShipped(file, static_cast<std::uint64_t>(info.st_size))) return;
    standardEntries_.reserve(
        std::min(static_cast<std::size_t>(info.st_size) / kBytesPerEntry, kMostEntriesReserved));
  }
  ReadLines(file, [this](const char* begin, const char* end, const char* addedFeed) {
    for (const char* line = begin; line != end;) {
      const ParsedLine parsed = ParseLine(line, addedFeed);
      if (parsed.isEntry) {
        AddEntry(parsed.tag.group, parsed.tag.element, parsed.pairs.vr, parsed.pairs.owner);
      }
      line = parsed.pairs.feed + 1;
    }
  });
}

// A group below 7 or an even group is standard, whatever the owner; any other needs one. The file
// lists its tags in ascending order, so a standard entry mostly goes on the end.
void DicomDictionary::AddEntry(std::uint16_t group, std::uint16_t element, std::string_view vr,
                               std::string_view owner) {
  const std::uint32_t key = KeyOf(group, element);
  if (group >= 7 && group % 2 == 1) {
    AddPrivate(key, owner);
  } else if (standardEntries_.empty() || standardEntries_.back().key < key) {
    standardEntries_.push_back(Entry{key, InternVR(vr)});
  } else {
    InsertStandard(key, vr);
  }
}

void DicomDictionary::AddPrivate(std::uint32_t key, std::string_view owner) {
  if (owner.empty()) {
    halvorine::Raise(kUnit, __LINE__,
                     "The dictionary found a private tag (%4x, %4x) tag whithout owner.", key >> 16,
                     key & 0xFFFF);
  }
  auto table = privateKeys_.find(owner);
  if (table == privateKeys_.end()) table = privateKeys_.try_emplace(std::string(owner)).first;
  if (!table->second.insert(key).second) RaiseDuplicate();
}

void DicomDictionary::InsertStandard(std::uint32_t key, std::string_view vr) {
  const auto place = std::ranges::lower_bound(standardEntries_, key, {}, &Entry::key);
  if (place->key == key) RaiseDuplicate();
  standardEntries_.insert(place, Entry{key, InternVR(vr)});
}

// Mostly one of some thirty codes of two capitals, found by their slot; any other text is looked
// for among those met.
std::uint32_t DicomDictionary::InternVR(std::string_view vr) {
  if (vr.size() != 2 || !IsCapital(vr[0]) || !IsCapital(vr[1])) return InternOtherVR(vr);
  std::uint32_t& slot = codeSlots_[static_cast<std::size_t>((vr[0] - 'A') * 26 + (vr[1] - 'A'))];
  if (slot == 0) slot = AddVRText(vr) + 1;
  return slot - 1;
}

std::uint32_t DicomDictionary::InternOtherVR(std::string_view vr) {
  const auto found = std::ranges::find(vrTexts_, vr);
  return found != vrTexts_.end() ? static_cast<std::uint32_t>(found - vrTexts_.begin())
                                 : AddVRText(vr);
}

std::uint32_t DicomDictionary::AddVRText(std::string_view vr) {
  vrTexts_.emplace_back(vr);
  return static_cast<std::uint32_t>(vrTexts_.size() - 1);
}

}  // namespace DicomEngine
