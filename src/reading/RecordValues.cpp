#include "reading/RecordValues.h"

#include <algorithm>

#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRString.h"
#include "support/MyException.h"

namespace halvorine {
namespace {

// Failures of a load name the service's unit, as the host sees them.
constexpr char kUnit[] = "DicomDirImpl";

std::uint32_t KeyOf(std::uint16_t group, std::uint16_t element) {
  return std::uint32_t{group} << 16 | element;
}

// The place of a tag in tags, which ascend, or tags.size().
template <std::size_t kSize>
std::size_t IndexOf(const std::array<std::uint32_t, kSize>& tags, std::uint32_t key) {
  const auto found = std::ranges::lower_bound(tags, key);
  return found != tags.end() && *found == key ? static_cast<std::size_t>(found - tags.begin())
                                              : kSize;
}

}  // namespace

RecordLink::RecordLink(const DicomEngine::VRContainer& container, std::uint16_t group,
                       std::uint16_t element)
    : group_(group), element_(element) {
  const auto* attribute =
      dynamic_cast<const DicomEngine::UnsignedIntegerVR*>(container.Find(group, element));
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
    const std::size_t index = IndexOf(kTags, KeyOf(element->group, element->element));
    if (index < kTags.size() && firsts[index] == nullptr) firsts[index] = element.get();
  }
  std::array<const DicomEngine::VRString*, kTags.size()> texts{};
  std::size_t size = 0;
  for (std::size_t i = 0; i < kTags.size(); ++i) {
    texts[i] = dynamic_cast<const DicomEngine::VRString*>(firsts[i]);
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
  const std::size_t index = IndexOf(kTags, KeyOf(group, element));
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
