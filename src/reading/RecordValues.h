// What a load reads of one directory record, copied out of the parsed tree so that the tree can
// go before the record objects are made: a directory of 100,000 records holds more than a
// million elements, and the objects need only a few texts and the two links of each record.
#ifndef HALVORINE_READING_RECORDVALUES_H
#define HALVORINE_READING_RECORDVALUES_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/elements/VRContainer.h"
#include "engine/parsing/PlainItem.h"
#include "reading/TextStore.h"

namespace halvorine {

// An offset attribute as the tree held it. Its failures are raised only when the walk reads it,
// so that a load fails where and as it would read the element itself.
class RecordLink {
 public:
  RecordLink() = default;
  RecordLink(std::span<const DicomEngine::PlainElement> elements, std::uint16_t group,
             std::uint16_t element);

  // The first number, as signed 32 bits. Raises when there was no "UL" element, or one with no
  // number; where is the offset of the record that holds it, for the message.
  std::int32_t Read(std::uint32_t where) const;

  friend bool operator==(const RecordLink&, const RecordLink&) = default;

 private:
  enum class State : std::uint8_t { kMissing, kEmpty, kNumber };

  State state_ = State::kMissing;
  std::uint16_t group_ = 0;
  std::uint16_t element_ = 0;
  std::int32_t number_ = 0;
};

class RecordValues {
 public:
  // The entry of a delimiter or a fragment, where no record begins.
  RecordValues() = default;
  // The record's elements as a plain item holds them, or as PlainElementsOf views a parsed one;
  // the kept texts go into store, which must outlive the values.
  RecordValues(std::span<const DicomEngine::PlainElement> record, TextStore& store);

  bool IsRecord() const { return isRecord_; }
  // The value of a text element among those that a load reads, empty ones included; nothing when
  // the record has no such text element. The view's data() ends with a NUL.
  std::optional<std::string_view> Text(std::uint16_t group, std::uint16_t element) const;

  friend bool operator==(const RecordValues&, const RecordValues&) = default;

  RecordLink next;   // (0004,1400)
  RecordLink lower;  // (0004,1420)

 private:
  bool isRecord_ = false;
  // The kept texts in the order of their tags, one entry each: the tag's index among the kept
  // tags plus one, the value's length when below 255 (else 255), the value, a NUL; then a NUL. A
  // record keeps a handful, so a search through them costs less than room for all.
  std::string_view texts_ = std::string_view("", 1);
};

// The elements of a parsed container as a plain item would hold them, viewing their values.
std::vector<DicomEngine::PlainElement> PlainElementsOf(const DicomEngine::VRContainer& container);

}  // namespace halvorine

#endif  // HALVORINE_READING_RECORDVALUES_H
