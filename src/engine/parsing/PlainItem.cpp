#include "engine/parsing/PlainItem.h"

#include <bit>
#include <cstring>
#include <utility>

#include "engine/elements/VR.h"
#include "engine/parsing/ElementClass.h"

namespace DicomEngine {
namespace {

// Tag, VR and a short length; a long length takes 4 bytes more.
constexpr std::size_t kShortHeader = 8;
constexpr std::size_t kLongHeader = 12;

template <typename Unsigned>
Unsigned ReadNumber(const std::uint8_t* bytes) {
  Unsigned value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

// The kind of a plain element of the class, and the width of its numbers; kOther when the class
// can't be plain.
std::pair<PlainElement::Kind, std::uint32_t> KindOf(ElementClass elementClass) {
  switch (elementClass) {
    case ElementClass::kString:
    case ElementClass::kUniqueIdentifier:
      return {PlainElement::Kind::kText, 1};
    case ElementClass::kUnsignedLong:
      return {PlainElement::Kind::kUnsignedLong, 4};
    case ElementClass::kUnsignedShort:
      return {PlainElement::Kind::kUnsignedShort, 2};
    default:
      return {PlainElement::Kind::kOther, 0};
  }
}

}  // namespace

bool PlainItem::Read(std::span<const std::uint8_t> bytes) {
  static_assert(std::endian::native == std::endian::little, "numbers are read as they lie");
  count_ = 0;
  std::size_t at = 0;
  std::uint32_t lastKey = 0;
  while (at < bytes.size()) {
    const std::uint8_t* const header = bytes.data() + at;
    const std::size_t left = bytes.size() - at;
    if (left < kShortHeader || count_ == kMaxElements) return false;
    const auto group = ReadNumber<std::uint16_t>(header);
    const auto element = ReadNumber<std::uint16_t>(header + 2);
    const std::uint32_t key = std::uint32_t{group} << 16 | element;
    if (group <= kMetaGroup || group == kItemGroup || (count_ > 0 && key <= lastKey)) {
      return false;
    }
    const std::string_view code(reinterpret_cast<const char*>(header + 4), 2);
    const auto [kind, width] = KindOf(ClassOfCode(code));
    if (kind == PlainElement::Kind::kOther) return false;
    const bool isLong = HasLongLength(code);
    if (isLong && left < kLongHeader) return false;
    const std::size_t headerSize = isLong ? kLongHeader : kShortHeader;
    const std::uint32_t length = isLong ? ReadNumber<std::uint32_t>(header + 8)
                                        : ReadNumber<std::uint16_t>(header + 6);
    if (length > left - headerSize || length % width != 0) return false;
    std::string_view value(reinterpret_cast<const char*>(header + headerSize), length);
    if (kind == PlainElement::Kind::kText) value = value.substr(0, value.find('\0'));
    elements_[count_++] = PlainElement{group, element, kind, value};
    lastKey = key;
    at += headerSize + length;
  }
  return true;
}

}  // namespace DicomEngine
