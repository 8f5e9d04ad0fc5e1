// Writes DICOMDIR files byte by byte in the forms that the writers of Debian's packages don't
// make: implicit VR, no preamble, undefined-length items with their delimiters, records in
// another physical order than their chain, icon image sequences inside records, and links of any
// value. Offsets are worked out from the encoded sizes, so the links of a variant are right
// unless a test overrides them.
#ifndef HALVORINE_TESTS_READING_DICOMDIRVARIANTS_H
#define HALVORINE_TESTS_READING_DICOMDIRVARIANTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace halvorine::testing {

struct VariantAttribute {
  std::uint16_t group;
  std::uint16_t element;
  std::string vr;
  std::string value;  // text, padded to even length when written
};

struct VariantRecord {
  explicit VariantRecord(std::string recordType,
                         std::vector<VariantAttribute> recordAttributes = {}, int nextIndex = -1,
                         int lowerIndex = -1)
      : type(std::move(recordType)),
        attributes(std::move(recordAttributes)),
        next(nextIndex),
        lower(lowerIndex) {}

  std::string type;
  std::vector<VariantAttribute> attributes;  // in ascending tag order
  int next = -1;                             // index of the next record, -1 for none
  int lower = -1;                            // index of the first child, -1 for none
  bool iconImage = false;
  // Values written as they stand instead of the offsets of next and lower.
  std::optional<std::uint32_t> rawNext;
  std::optional<std::uint32_t> rawLower;
  enum class Form { kNumber, kMissing, kEmpty };
  Form nextForm = Form::kNumber;  // (0004,1400) as a number, left out, or of length 0
};

struct VariantLayout {
  VariantLayout() = default;
  VariantLayout(bool implicit, bool withPreamble, bool undefined, std::vector<int> physical = {})
      : implicitVR(implicit), preamble(withPreamble), undefinedItems(undefined), order(physical) {}

  bool implicitVR = false;
  bool preamble = true;
  bool undefinedItems = false;
  std::vector<int> order;  // physical order of the records; empty for their index order
  int root = 0;            // index of the first root record, -1 for none
  std::optional<std::uint32_t> rawRoot;
};

std::string MakeDicomDir(const std::vector<VariantRecord>& records, const VariantLayout& layout);

// The file offset at which record index begins in the file that MakeDicomDir gives.
std::uint32_t RecordOffset(const std::vector<VariantRecord>& records, const VariantLayout& layout,
                           int index);

// patients × studies × series × images, with texts that name their place ("P1", "P1S2"...).
std::vector<VariantRecord> MakeTree(int patients, int studies, int series, int images);

}  // namespace halvorine::testing

#endif  // HALVORINE_TESTS_READING_DICOMDIRVARIANTS_H
