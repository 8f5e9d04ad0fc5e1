#include "reading/RecordValues.h"

#include <array>

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

}  // namespace

RecordLink::RecordLink(const DicomEngine::VRContainer& container, std::uint16_t group,
                       std::uint16_t element)
    : group_(group), element_(element) {
  const DicomEngine::VR* found = container.Find(group, element);
  const auto* attribute = found == nullptr
                              ? nullptr
                              : DicomEngine::ElementCast<DicomEngine::UnsignedIntegerVR,
                                                         DicomEngine::UnsignedIntegerVR>(*found);
  if (attribute == nullptr) return;
  state_ = attribute->values.empty() ? State::kEmpty : State::kNumber;
  if (state_ == State::kNumber) number_ = static_cast<std::int32_t>(attribute->values.front());
}

std::int32_t RecordLink::Read(std::uint32_t where) const {
  if (state_ == State::kMissing) Raise(kUnit, __LINE__, "The first record offset is missing.");
  if (state_ == State::kEmpty) {
    Raise(kUnit, __LINE__, "The offset attribute (%04X,%04X) at offset %u holds no number.", group_,
          element_, where);
  }
  return number_;
}

RecordValues::RecordValues(const DicomEngine::VRContainer& record)
    : next(record, 0x0004, 0x1400), lower(record, 0x0004, 0x1420), isRecord_(true) {
  // The first element of a tag decides, as Find gives it: one that is no text hides later ones.
  std::array<const DicomEngine::VR*, kTags.size()> firsts{};
  for (const auto& element : record.Elements()) {
    if (!element) continue;
    const std::size_t index = kTagTable.IndexOf(KeyOf(element->group, element->element));
    if (index < kTags.size() && firsts[index] == nullptr) firsts[index] = element.get();
  }
  std::array<const DicomEngine::VRString*, kTags.size()> texts{};
  std::size_t size = 0;
  for (std::size_t i = 0; i < kTags.size(); ++i) {
    texts[i] = firsts[i] == nullptr
                   ? nullptr
                   : DicomEngine::ElementCast<DicomEngine::VRString, DicomEngine::VRString,
                                              DicomEngine::VRUniqueIdentifier>(*firsts[i]);
    if (texts[i] != nullptr) size += texts[i]->GetValue().size() + 2;
  }
  texts_.reserve(size);
  for (std::size_t i = 0; i < kTags.size(); ++i) {
    if (texts[i] == nullptr) continue;
    texts_.push_back(static_cast<char>(i + 1));
    texts_.append(texts[i]->GetValue()).push_back('\0');
  }
}

std::optional<std::string_view> RecordValues::Text(std::uint16_t group,
                                                   std::uint16_t element) const {
  const std::size_t index = kTagTable.IndexOf(KeyOf(group, element));
  if (index == kTags.size()) return std::nullopt;
  const auto mark = static_cast<char>(index + 1);
  // A parsed text holds no NUL, so each entry ends at the first one.
  for (const char* entry = texts_.c_str(); *entry != '\0';) {
    const std::string_view value(entry + 1);
    if (*entry == mark) return value;
    entry = value.data() + value.size() + 1;
  }
  return std::nullopt;
}

}  // namespace halvorine
