#include "engine/parsing/Parser.h"

#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/VRAttributeTag.h"
#include "engine/elements/VRBinary.h"
#include "engine/elements/VRBinarySequenceItem.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRSequence.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "engine/parsing/ElementClass.h"
#include "support/MyException.h"
#include "support/TraceLog.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "Parser";
constexpr int kElementTraceLevel = 3;
constexpr std::uint16_t kTransferSyntaxElement = 0x0010;

// Group, then element: one read of 32 bits, least significant byte first, gives both.
AttributeTag ReadTag(BufferReader& reader) {
  const std::uint32_t tag = reader.ReadUnsignedLong();
  return {static_cast<std::uint16_t>(tag & 0xFFFF), static_cast<std::uint16_t>(tag >> 16)};
}

// The two letters of an explicit VR, least significant byte first, up to the first NUL as
// ReadString(2) would keep them, and "UN" when none is left: the VR is read as a number, since
// this runs for every element.
VRCode VRCodeOf(std::uint16_t bytes) {
  const char letters[2] = {static_cast<char>(bytes & 0xFF), static_cast<char>(bytes >> 8)};
  if (letters[0] == '\0') return "UN";
  return std::string_view(letters, letters[1] == '\0' ? 1 : 2);
}

// The VR of an implicit element: a group length in any group is "UL"; a private group (odd, from
// 7 up) carries no dictionary VR. The dictionary's two multi-VR texts are folded into the code
// that the element is read under.
std::string_view LookUpVR(std::uint16_t group, std::uint16_t element) {
  if (element == 0) return "UL";
  if (group >= 7 && group % 2 != 0) return "UN";
  const std::string_view vrCode = DicomDictionary::GetInstance().FindVR(group, element);
  if (vrCode == "OW/OB") return "OB";
  if (vrCode == "US or SS") return "US";
  return vrCode;
}

// ((length - 1) / width) + 1 numbers for a non-zero length, read one by one: a length that isn't
// a multiple of the width reads up to width - 1 bytes beyond the element's end. The length is
// tested before the list is sized, so that a false one fails before it allocates.
template <typename Number, typename ReadOne>
NumberList<Number> ReadList(BufferReader& reader, std::uint32_t length, std::uint32_t width,
                            ReadOne readOne) {
  if (length == 0) return {};
  reader.EnsureAvailable(length);
  NumberList<Number> values((length - 1) / width + 1);
  for (Number& value : values) value = readOne(reader);
  return values;
}

// Under 4 bytes nothing is read, so that 1 to 3 value bytes are taken for the next tag.
std::vector<AttributeTag> ReadTags(BufferReader& reader, std::uint32_t length) {
  if (length < 4) return {};
  const NumberList<AttributeTag> tags =
      ReadList<AttributeTag>(reader, length, 4, [](BufferReader& from) {
        const std::uint16_t group = from.ReadUnsignedShort();
        return AttributeTag{group, from.ReadUnsignedShort()};
      });
  return {tags.begin(), tags.end()};
}

std::unique_ptr<std::uint8_t[]> ReadBlock(BufferReader& reader, std::uint32_t length) {
  std::unique_ptr<std::uint8_t[]> block;
  reader.ReadBinary(&block, length);
  return block;
}

// Whether a tag stands in the container already, for Append's duplicate test, without its walk
// over the list for every element: tags mostly ascend, and a tag above the highest so far is
// new. Only when one comes out of order are the container's tags gathered into a set.
class TagIndex {
 public:
  explicit TagIndex(const VRContainer& container) : container_(container) {
    if (!container.Elements().empty()) GatherTags();
  }

  // Whether the tag was there, noting it as there now: the caller appends it next.
  bool Note(const VR& object) {
    const std::uint32_t key = KeyOf(object);
    if (ascending_) {
      if (container_.Elements().empty() || key > highest_) {
        highest_ = key;
        return false;
      }
      GatherTags();
    }
    return !tags_.insert(key).second;
  }

 private:
  static std::uint32_t KeyOf(const VR& object) {
    return std::uint32_t{object.group} << 16 | object.element;
  }

  void GatherTags() {
    ascending_ = false;
    for (const auto& held : container_.Elements()) tags_.insert(KeyOf(*held));
  }

  const VRContainer& container_;
  bool ascending_ = true;
  std::uint32_t highest_ = 0;
  std::unordered_set<std::uint32_t> tags_;
};

void AppendElement(VRContainer& container, TagIndex& tags, std::unique_ptr<VR> object) {
  const bool maybeDuplicate = tags.Note(*object);
  container.Append(std::move(object), maybeDuplicate);
}

// The text is built only when the line will be written: this runs for every element.
void TraceElement(const VR* object) {
  if (!halvorine::GetTraceLog().IsEnabled(kElementTraceLevel)) return;
  halvorine::Trace(object == nullptr ? std::string("The parsed VR is NULL.")
                                     : "The parsed VR is: " + object->ToString(),
                   kElementTraceLevel);
}

}  // namespace

Parser::Parser() : bin_(&ownBin_) {}

Parser::Parser(std::unique_ptr<BufferReader> reader, SyntaxRecord headerSyntax) : Parser() {
  SetReader(std::move(reader), headerSyntax);
}

Parser::Parser(std::unique_ptr<BufferReader> reader, const Parser& parent)
    : reader_(std::move(reader)),
      headerSyntax_(parent.headerSyntax_),
      dataSetSyntax_(parent.dataSetSyntax_),
      syntaxKnown_(parent.dataSetSyntax_.vrForm != 0 && parent.dataSetSyntax_.byteOrder != 0),
      depth_(parent.depth_ + 1),
      bin_(parent.bin_) {}

Parser::~Parser() = default;

void Parser::SetReader(std::unique_ptr<BufferReader> reader, SyntaxRecord headerSyntax) {
  reader_ = std::move(reader);
  headerSyntax_ = headerSyntax;
}

void Parser::Parse(VRContainer& container) {
  if (reader_ == nullptr) halvorine::Raise(kUnit, __LINE__, "The parser buffer is NULL.");
  TagIndex tags(container);
  while (reader_->HasBytes(1)) {
    const auto [group, element] = ReadTag(*reader_);
    if (group == kItemGroup && element == kItemDelimiter) {
      const std::uint32_t length = reader_->ReadUnsignedLong();
      AppendElement(container, tags, std::make_unique<VRSequenceItem>("", group, element, length));
      return;
    }
    const auto [vrCode, length] = ReadVRAndLength(group, element);
    std::unique_ptr<VR> object = MakeElement(vrCode, group, element, length);
    const VR* const made = object.get();
    TraceElement(made);
    if (made != nullptr) AppendElement(container, tags, std::move(object));
    if (!syntaxKnown_ && group == kMetaGroup && element == kTransferSyntaxElement) {
      ApplyTransferSyntax(made);
      syntaxKnown_ = true;
    }
  }
}

std::uint32_t Parser::GetVRFieldSize(std::uint16_t group, std::uint16_t /*element*/) const {
  if (group == kItemGroup) return 0;
  return GetSyntaxForGroup(group).vrForm == kImplicitVR ? 0 : 2;
}

std::uint32_t Parser::GetLengthFieldSize(std::string_view vrCode, std::uint16_t group,
                                         std::uint16_t /*element*/) const {
  if (group == kItemGroup || GetSyntaxForGroup(group).vrForm != kExplicitVR) return 4;
  return HasLongLength(vrCode) ? 6 : 2;
}

SyntaxRecord Parser::GetSyntaxForGroup(std::uint16_t group) const {
  return !syntaxKnown_ || group <= kMetaGroup ? headerSyntax_ : dataSetSyntax_;
}

// ChooseVR, then ReadLength; but an explicit element outside group FFFE takes its VR and the two
// bytes behind it, which are the short length or the reserved bytes of the long form, in one
// read of the same bytes, since this runs for every element.
std::pair<std::string_view, std::uint32_t> Parser::ReadVRAndLength(std::uint16_t group,
                                                                   std::uint16_t element) {
  if (group == kItemGroup || GetSyntaxForGroup(group).vrForm != kExplicitVR) {
    const std::string_view vrCode = ChooseVR(group, element);
    return {vrCode, ReadLength(vrCode, group, element)};
  }
  const std::uint32_t field = reader_->ReadUnsignedLong();
  explicitCode_ = VRCodeOf(static_cast<std::uint16_t>(field & 0xFFFF));
  const std::string_view vrCode = explicitCode_.View();
  return {vrCode, HasLongLength(vrCode) ? reader_->ReadUnsignedLong() : field >> 16};
}

// An explicit stream's code is taken as it stands, without the dictionary; an empty one (the
// two bytes began with a NUL) reads as "UN".
std::string_view Parser::ChooseVR(std::uint16_t group, std::uint16_t element) {
  if (group != kItemGroup && GetSyntaxForGroup(group).vrForm != kImplicitVR) {
    explicitCode_ = VRCodeOf(reader_->ReadUnsignedShort());
    return explicitCode_.View();
  }
  const std::string_view vrCode = LookUpVR(group, element);
  return vrCode.empty() ? "UN" : vrCode;
}

// A 16-bit length is never undefined: 0xFFFF is 65535.
std::uint32_t Parser::ReadLength(std::string_view vrCode, std::uint16_t group,
                                 std::uint16_t /*element*/) {
  if (GetSyntaxForGroup(group).vrForm != kExplicitVR) return reader_->ReadUnsignedLong();
  if (!HasLongLength(vrCode)) return reader_->ReadUnsignedShort();
  reader_->Skip(2);
  return reader_->ReadUnsignedLong();
}

std::unique_ptr<VR> Parser::MakeElement(std::string_view vrCode, std::uint16_t group,
                                        std::uint16_t element, std::uint32_t length) {
  BufferReader& reader = *reader_;
  const VRCode code(vrCode);
  switch (ClassOfCode(vrCode)) {
    case ElementClass::kBinary:
      if (length == kUndefinedLength) return ParseSequence(group, element, vrCode, length);
      return std::make_unique<VRBinary>(code, group, element, length, ReadBlock(reader, length));
    case ElementClass::kSequence:
      return ParseSequence(group, element, vrCode, length);
    case ElementClass::kString:
      return MakeText<VRString>(code, group, element, length);
    case ElementClass::kUniqueIdentifier:
      return MakeText<VRUniqueIdentifier>(code, group, element, length);
    case ElementClass::kAttributeTag:
      return std::make_unique<VRAttributeTag>(code, group, element, length,
                                              ReadTags(reader, length));
    case ElementClass::kFloat:
      return std::make_unique<DoubleVR>(
          code, group, element, length,
          ReadList<double>(reader, length, 4,
                           [](BufferReader& from) -> double { return from.ReadFloat(4); }));
    case ElementClass::kDouble:
      return std::make_unique<DoubleVR>(code, group, element, length,
                                        ReadList<double>(reader, length, 8, [](BufferReader& from) {
                                          return from.ReadDouble(8);
                                        }));
    case ElementClass::kUnsignedLong:
      return bin_->Make<UnsignedIntegerVR>(
          code, group, element, length,
          ReadList<std::uint32_t>(reader, length, 4,
                                  [](BufferReader& from) { return from.ReadUnsignedLong(); }));
    case ElementClass::kUnsignedShort:
      return bin_->Make<UnsignedShortVR>(
          code, group, element, length,
          ReadList<std::uint16_t>(reader, length, 2,
                                  [](BufferReader& from) { return from.ReadUnsignedShort(); }));
    case ElementClass::kSignedShort:
      return std::make_unique<SignedShortVR>(
          code, group, element, length,
          ReadList<std::int16_t>(reader, length, 2, [](BufferReader& from) {
            return static_cast<std::int16_t>(from.ReadUnsignedShort());
          }));
    case ElementClass::kSignedLong:
      return std::make_unique<IntegerVR>(
          code, group, element, length,
          ReadList<std::int32_t>(reader, length, 4,
                                 [](BufferReader& from) { return from.ReadSignedLong(); }));
    case ElementClass::kNone:
      return nullptr;
  }
  return nullptr;
}

template <class Text>
std::unique_ptr<VR> Parser::MakeText(VRCode code, std::uint16_t group, std::uint16_t element,
                                     std::uint32_t length) {
  std::string value = bin_->TakeBuffer<Text>();
  reader_->ReadString(length, value);
  return bin_->Make<Text>(code, group, element, length, std::move(value));
}

// The sequence keeps its code: "SQ", or a binary code of undefined length, whose items under
// "OB" and "OW" are fragments of encapsulated pixel data, offset table first.
std::unique_ptr<VR> Parser::ParseSequence(std::uint16_t group, std::uint16_t element,
                                          std::string_view vrCode, std::uint32_t length) {
  if (depth_ >= kMaxSequenceDepth) {
    halvorine::Raise(kUnit, __LINE__, "Sequences are nested deeper than %d levels.",
                     kMaxSequenceDepth);
  }
  auto sequence = std::make_unique<VRSequence>(VRCode(vrCode), group, element, length);
  if (length == 0) return sequence;
  const bool binaryItems = vrCode == "OB" || vrCode == "OW";
  std::uint32_t consumed = 0;
  for (bool finished = false; !finished;) {
    std::unique_ptr<VR> entry =
        ParseSequenceItem(*sequence, binaryItems, length, consumed, finished);
    if (entry == nullptr) continue;
    if (depth_ == 0 && entryHandler_) entryHandler_(*sequence, entry);
    sequence->Append(std::move(entry), false);
  }
  return sequence;
}

// An item header is 8 bytes in every syntax: tag and a 32-bit length, no VR. A defined-length
// sequence ends when its items' headers and lengths reach its length; a delimiter ends any.
std::unique_ptr<VR> Parser::ParseSequenceItem(const VR& sequence, bool binaryItems,
                                              std::uint32_t sequenceLength,
                                              std::uint32_t& consumed, bool& finished) {
  finished = false;
  const auto [group, element] = ReadTag(*reader_);
  const std::uint32_t itemLength = reader_->ReadUnsignedLong();
  consumed += 8;
  if (group == kItemGroup && element == kItem) {
    if (sequenceLength != kUndefinedLength) {
      if (itemLength == kUndefinedLength) {
        halvorine::Raise(kUnit, __LINE__,
                         "Defined length sequence contains undefined length item.");
      }
      consumed += itemLength;
      finished = sequenceLength <= consumed;
    }
    if (binaryItems) {
      return std::make_unique<VRBinarySequenceItem>(group, element, itemLength,
                                                    ReadBlock(*reader_, itemLength));
    }
    if (OfferPlainItem(sequence, itemLength)) return nullptr;
    return ParseNestedItem(itemLength);
  }
  if (group == kItemGroup && element == kSequenceDelimiter) {
    finished = true;
    return std::make_unique<VRSequenceItem>("", group, element, itemLength);
  }
  halvorine::Raise(kUnit, __LINE__, "Invalid tag found where a sequence item was expected.");
}

// The item's elements are read as its own parser would read them: in the data set's syntax,
// which must be explicit and set, since the plain item has groups above 2 alone.
bool Parser::OfferPlainItem(const VR& sequence, std::uint32_t itemLength) {
  if (depth_ != 0 || !plainItemHandler_ || itemLength == kUndefinedLength ||
      dataSetSyntax_.vrForm != kExplicitVR || dataSetSyntax_.byteOrder == 0 ||
      halvorine::GetTraceLog().IsEnabled(kElementTraceLevel)) {
    return false;
  }
  const std::uint8_t* const bytes = reader_->Peek(itemLength);
  PlainItem item;
  if (bytes == nullptr || !item.Read({bytes, itemLength}) ||
      !plainItemHandler_(sequence, item, itemLength)) {
    return false;
  }
  reader_->Skip(itemLength);
  return true;
}

// The item's own parser reads through a nested reader, which moves this parser's reader with it:
// a defined-length item ends where the nested reader runs out, an undefined-length one behind
// its (FFFE,E00D).
std::unique_ptr<VR> Parser::ParseNestedItem(std::uint32_t itemLength) {
  std::unique_ptr<BufferReader> itemReader = reader_->CreateSubReader(itemLength);
  if (itemReader == nullptr) {
    halvorine::Raise(kUnit, __LINE__, "Failed to create sequence item buffer.");
  }
  auto item = bin_->Make<VRSequenceItem>("", kItemGroup, kItem, itemLength);
  // A directory record has a dozen or so elements.
  item->Reserve(16);
  Parser(std::move(itemReader), *this).Parse(*item);
  return item;
}

// A UID that the table lacks leaves dataSetSyntax as it was: all zero.
void Parser::ApplyTransferSyntax(const VR* object) {
  const auto* uid = dynamic_cast<const VRString*>(object);
  if (uid == nullptr) return;
  if (const SyntaxRecord* record = TransferSyntax::GetInstance().Find(uid->GetValue())) {
    dataSetSyntax_ = *record;
  }
}

}  // namespace DicomEngine
