// The elements of one sequence item, read in place without element objects, for a caller that
// only reads values. An item is plain when the parser would read every element of it in the
// explicit VR form into a text (VRString's codes and UI), a UL or a US, each value inside the item
// and a whole number of numbers long, with groups above 2 and below FFFE and tags ascending.
// Then the elements hold what the parser's objects would: the same tags, in file order, and the
// same values. Any other item isn't plain, and is left to the parser.
#ifndef HALVORINE_ENGINE_PARSING_PLAINITEM_H
#define HALVORINE_ENGINE_PARSING_PLAINITEM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace DicomEngine {

struct PlainElement {
  // kOther stands for any other class, which a parsed tree may hold and a plain item never does.
  enum class Kind : std::uint8_t { kText, kUnsignedLong, kUnsignedShort, kOther };

  std::uint16_t group;
  std::uint16_t element;
  Kind kind;
  // A text up to its first NUL, as the parser keeps it; the bytes of the numbers, least
  // significant first.
  std::string_view value;
};

class PlainItem {
 public:
  // Well above a directory record's count; an item with more isn't plain.
  static constexpr std::size_t kMaxElements = 48;

  // Reads the item's value, the bytes behind its header; false when the item isn't plain, and the
  // elements are then undefined. The elements view bytes.
  bool Read(std::span<const std::uint8_t> bytes);
  std::span<const PlainElement> Elements() const { return {elements_.data(), count_}; }

 private:
  // Left unset: a parser may make one for every item.
  std::array<PlainElement, kMaxElements> elements_;
  std::size_t count_ = 0;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_PARSING_PLAINITEM_H
