// DICOMDIR files written byte by byte in the forms that the writers of Debian's packages don't
// make: implicit VR, no preamble, undefined-length items with their delimiters, records in
// another physical order than their chain, icon image sequences inside records, and links of any
// value; links name records by index and are worked out from the encoded sizes. The reader's
// tests and the load benchmark use them.
#ifndef HALVORINE_TESTS_READING_DICOMDIRVARIANTS_H
#define HALVORINE_TESTS_READING_DICOMDIRVARIANTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace halvorine::testing {

struct VariantAttribute {
  std::uint16_t group;
  std::uint16_t element;
  std::string vr;
  std::string value;  // text, padded to even length when written
};

struct VariantRecord {
  std::string type;
  std::vector<VariantAttribute> attributes = {};  // in ascending tag order
  int next = -1;                                  // index of the next record, -1 for none
  int lower = -1;                                 // index of the first child, -1 for none
  bool iconImage = false;
  std::optional<std::uint32_t> rawNext = {};  // written as it stands instead of next's offset
  enum class Next { kNumber, kMissing, kEmpty } nextForm = Next::kNumber;  // (0004,1400)
};

struct VariantLayout {
  bool implicitVR = false;
  bool preamble = true;
  bool undefinedItems = false;
  std::vector<int> order = {};  // physical order of the records; empty for their index order
  std::optional<std::uint32_t> rawRoot = {};  // instead of the first record's offset
};

std::string MakeDicomDir(const std::vector<VariantRecord>& records, const VariantLayout& layout);

// The file offset at which record index begins in the file that MakeDicomDir gives.
std::uint32_t RecordOffset(const std::vector<VariantRecord>& records, const VariantLayout& layout,
                           int index);

// patients × studies × series × images, with texts that name their place ("P1", "P1S2"...).
std::vector<VariantRecord> MakeTree(int patients, int studies, int series, int images);

}  // namespace halvorine::testing

#endif  // HALVORINE_TESTS_READING_DICOMDIRVARIANTS_H
