#include "reading/RecordValues.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRString.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "support/MyException.h"

namespace halvorine {
namespace {

// Failures of a load name the service's unit, as the host sees them.
constexpr char kUnit[] = "DicomDirImpl";

std::uint32_t KeyOf(std::uint16_t group, std::uint16_t element) {
  return std::uint32_t{group} << 16 | element;
}

// The record type and the attributes that the four levels map, in ascending order.
constexpr std::array<std::uint32_t, 17> kTags = {
    0x00041430, 0x00041500, 0x00041510, 0x00041511, 0x00080020, 0x00080030,
    0x00080050, 0x00080060, 0x00080080, 0x00081030, 0x00100010, 0x00100020,
    0x0020000D, 0x0020000E, 0x00200010, 0x00200011, 0x00200013};

// The place of a tag in kTags by a multiplicative hash that gives each of them a slot of its own,
// found at compile time: a load looks up every element of every record.
class TagTable {
 public:
  static constexpr std::size_t kMissing = kTags.size();

  constexpr TagTable() {
    while (!TryFill()) multiplier_ += 2;
  }

  constexpr std::size_t IndexOf(std::uint32_t key) const {
    const std::uint8_t slot = slots_[SlotOf(key)];
    return slot != 0 && kTags[slot - 1] == key ? slot - 1 : kMissing;
  }

 private:
  constexpr std::size_t SlotOf(std::uint32_t key) const { return (key * multiplier_) >> 26; }

  constexpr bool TryFill() {
    slots_ = {};
    for (std::size_t index = 0; index < kTags.size(); ++index) {
      std::uint8_t& slot = slots_[SlotOf(kTags[index])];
      if (slot != 0) return false;
      slot = static_cast<std::uint8_t>(index + 1);
    }
    return true;
  }

  std::uint32_t multiplier_ = 0x9E3779B1;  // 2^32 over the golden ratio, a well-mixing start
  std::array<std::uint8_t, 64> slots_{};   // index + 1, or 0
};

constexpr TagTable kTagTable;
static_assert(kTagTable.IndexOf(0x00200013) == 16 && kTagTable.IndexOf(0x00200012) == 17);

// An entry's length byte: the length of a shorter text, else this.
constexpr std::size_t kLongText = 255;

}  // namespace

// The first element of the tag decides, as a search of the container would find it.
RecordLink::RecordLink(std::span<const DicomEngine::PlainElement> elements, std::uint16_t group,
                       std::uint16_t element)
    : group_(group), element_(element) {
  const auto found = std::ranges::find_if(elements, [&](const DicomEngine::PlainElement& each) {
    return each.group == group && each.element == element;
  });
  if (found == elements.end() || found->kind != DicomEngine::PlainElement::Kind::kUnsignedLong) {
    return;
  }
  state_ = found->value.empty() ? State::kEmpty : State::kNumber;
  if (state_ == State::kNumber) std::memcpy(&number_, found->value.data(), sizeof number_);
}

std::int32_t RecordLink::Read(std::uint32_t where) const {
  if (state_ == State::kMissing) Raise(kUnit, __LINE__, "The first record offset is missing.");
  if (state_ == State::kEmpty) {
    Raise(kUnit, __LINE__, "The offset attribute (%04X,%04X) at offset %u holds no number.", group_,
          element_, where);
  }
  return number_;
}

RecordValues::RecordValues(std::span<const DicomEngine::PlainElement> record, TextStore& store)
    : next(record, 0x0004, 0x1400), lower(record, 0x0004, 0x1420), isRecord_(true) {
  // The first element of a tag decides: one that is no text hides later ones.
  std::array<const DicomEngine::PlainElement*, kTags.size()> firsts{};
  for (const DicomEngine::PlainElement& element : record) {
    const std::size_t index = kTagTable.IndexOf(KeyOf(element.group, element.element));
    if (index < kTags.size() && firsts[index] == nullptr) firsts[index] = &element;
  }
  const auto isText = [](const DicomEngine::PlainElement* element) {
    return element != nullptr && element->kind == DicomEngine::PlainElement::Kind::kText;
  };
  std::size_t size = 1;
  for (const DicomEngine::PlainElement* element : firsts) {
    if (isText(element)) size += element->value.size() + 3;
  }
  char* const texts = store.Allocate(size);
  char* end = texts;
  for (std::size_t i = 0; i < kTags.size(); ++i) {
    if (!isText(firsts[i])) continue;
    *end++ = static_cast<char>(i + 1);
    *end++ = static_cast<char>(std::min<std::size_t>(firsts[i]->value.size(), kLongText));
    end = std::ranges::copy(firsts[i]->value, end).out;
    *end++ = '\0';
  }
  *end = '\0';
  texts_ = std::string_view(texts, size);
}

std::optional<std::string_view> RecordValues::Text(std::uint16_t group,
                                                   std::uint16_t element) const {
  const std::size_t index = kTagTable.IndexOf(KeyOf(group, element));
  if (index == kTags.size()) return std::nullopt;
  const auto mark = static_cast<char>(index + 1);
  for (const char* entry = texts_.data(); *entry != '\0';) {
    const auto shortLength = static_cast<unsigned char>(entry[1]);
    // A parsed text holds no NUL, so a long one ends at the first.
    const std::string_view value = shortLength < kLongText
                                       ? std::string_view(entry + 2, shortLength)
                                       : std::string_view(entry + 2);
    if (*entry == mark) return value;
    entry = value.data() + value.size() + 1;
  }
  return std::nullopt;
}

std::vector<DicomEngine::PlainElement> PlainElementsOf(const DicomEngine::VRContainer& container) {
  using Kind = DicomEngine::PlainElement::Kind;
  std::vector<DicomEngine::PlainElement> elements;
  elements.reserve(container.Elements().size());
  for (const auto& element : container.Elements()) {
    if (!element) continue;
    DicomEngine::PlainElement plain{element->group, element->element, Kind::kOther, {}};
    if (const auto* text = DicomEngine::ElementCast<DicomEngine::VRString, DicomEngine::VRString,
                                                    DicomEngine::VRUniqueIdentifier>(*element)) {
      plain.kind = Kind::kText;
      plain.value = text->GetValue();
    } else if (const auto* numbers =
                   DicomEngine::ElementCast<DicomEngine::UnsignedIntegerVR,
                                            DicomEngine::UnsignedIntegerVR>(*element)) {
      plain.kind = Kind::kUnsignedLong;
      plain.value = {reinterpret_cast<const char*>(numbers->values.data()),
                     numbers->values.size() * sizeof(std::uint32_t)};
    }
    elements.push_back(plain);
  }
  return elements;
}

}  // namespace halvorine
