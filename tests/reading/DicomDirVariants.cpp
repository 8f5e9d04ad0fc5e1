#include "DicomDirVariants.h"

#include <utility>

#include "engine/encoding/ElementBytes.h"

namespace halvorine::testing {
namespace {

constexpr std::uint32_t kUndefined = 0xFFFFFFFF;

// UL, or US for size 2.
std::string Number(std::uint16_t element, std::uint32_t value, bool implicit, int size = 4) {
  return Encoded(0x0004, element, size == 4 ? "UL" : "US", LittleEndian(value, size), implicit);
}

std::string Delimiter(std::uint16_t element) { return ElementHeader(0xFFFE, element, "", 0); }

std::string Record(const VariantRecord& record, const std::vector<std::uint32_t>& offsets,
                   const VariantLayout& layout) {
  const bool implicit = layout.implicitVR;
  const auto link = [&](int index) { return index < 0 ? 0 : offsets[std::size_t(index)]; };
  std::string content;
  if (record.nextForm == VariantRecord::Next::kNumber) {
    content += Number(0x1400, record.rawNext.value_or(link(record.next)), implicit);
  } else if (record.nextForm == VariantRecord::Next::kEmpty) {
    content += Encoded(0x0004, 0x1400, "UL", "", implicit);
  }
  content += Number(0x1410, 0xFFFF, implicit, 2) + Number(0x1420, link(record.lower), implicit) +
             Encoded(0x0004, 0x1430, "CS", record.type, implicit);
  for (const VariantAttribute& a : record.attributes) {
    content += Encoded(a.group, a.element, a.vr, a.value, implicit);
  }
  // An undefined-length sequence of one undefined-length item, as icon images often come.
  if (record.iconImage) {
    content += ElementHeader(0x0088, 0x0200, "SQ", kUndefined, implicit) +
               ElementHeader(0xFFFE, 0xE000, "", kUndefined) +
               Encoded(0x0028, 0x0002, "US", LittleEndian(1, 2), implicit) +
               Encoded(0x0028, 0x0010, "US", LittleEndian(1, 2), implicit) + Delimiter(0xE00D) +
               Delimiter(0xE0DD);
  }
  const std::uint32_t length = layout.undefinedItems ? kUndefined : std::uint32_t(content.size());
  return ElementHeader(0xFFFE, 0xE000, "", length) + content +
         (layout.undefinedItems ? Delimiter(0xE00D) : "");
}

// The file and each record's offset. The sizes don't depend on the links' values, so the first
// pass finds the offsets that the second one writes.
std::pair<std::string, std::vector<std::uint32_t>> Encode(const std::vector<VariantRecord>& records,
                                                          const VariantLayout& layout) {
  const bool implicit = layout.implicitVR;
  std::vector<int> order = layout.order;
  for (int i = 0; layout.order.empty() && i < static_cast<int>(records.size()); ++i) {
    order.push_back(i);
  }
  std::vector<std::uint32_t> offsets(records.size(), 0);
  std::string file;
  for (int pass = 0; pass < 2; ++pass) {
    std::string head;
    if (layout.preamble) {
      const std::string meta =
          Encoded(0x0002, 0x0001, "OB", std::string("\0\1", 2)) +
          Encoded(0x0002, 0x0002, "UI", "1.2.840.10008.1.3.10") +
          Encoded(0x0002, 0x0003, "UI", "1.2.3.4") +
          Encoded(0x0002, 0x0010, "UI", implicit ? "1.2.840.10008.1.2" : "1.2.840.10008.1.2.1");
      head = std::string(128, '\0') + "DICM" +
             Encoded(0x0002, 0x0000, "UL", LittleEndian(std::uint32_t(meta.size()), 4)) + meta;
    } else {
      // A bare data set is only taken when it begins with group 0008.
      head = Encoded(0x0008, 0x0005, "CS", "ISO_IR 100", implicit);
    }
    head += Encoded(0x0004, 0x1130, "CS", "VARIANT", implicit) +
            Number(0x1200, layout.rawRoot.value_or(records.empty() ? 0 : offsets[0]), implicit) +
            Number(0x1202, 0, implicit) + Number(0x1212, 0, implicit, 2);
    std::vector<std::uint32_t> next(records.size(), 0);
    std::string items;
    for (const int index : order) {
      next[std::size_t(index)] = static_cast<std::uint32_t>(items.size());
      items += Record(records[std::size_t(index)], offsets, layout);
    }
    const std::string sequence = ElementHeader(
        0x0004, 0x1220, "SQ",
        layout.undefinedItems ? kUndefined : static_cast<std::uint32_t>(items.size()), implicit);
    for (std::uint32_t& offset : next) offset += std::uint32_t(head.size() + sequence.size());
    offsets = next;
    file = head + sequence + items + (layout.undefinedItems ? Delimiter(0xE0DD) : "");
  }
  return {file, offsets};
}

// Appends the chain of counts[level] records of that level below the place named parent, each
// with its children, and gives the first one's index.
int AppendChain(std::vector<VariantRecord>& records, const int (&counts)[4], int level,
                const std::string& parent) {
  static const char* const kTypes[] = {"PATIENT", "STUDY", "SERIES", "IMAGE"};
  int first = -1;
  int previous = -1;
  for (int i = 1; i <= counts[level]; ++i) {
    const int index = static_cast<int>(records.size());
    const std::string name = parent + "PSRI"[level] + std::to_string(i);
    const std::string n = std::to_string(i);
    const std::string uid = "1." + std::to_string(level + 1) + "." + std::to_string(index);
    const std::vector<std::vector<VariantAttribute>> attributes = {
        {{0x0010, 0x0010, "PN", name + "^Name"}, {0x0010, 0x0020, "LO", name}},
        {{0x0008, 0x0020, "DA", "2024030" + n},
         {0x0008, 0x0030, "TM", "1230"},
         {0x0008, 0x0050, "SH", name + "A"},
         {0x0008, 0x1030, "LO", name + " description"},
         {0x0020, 0x000D, "UI", uid},
         {0x0020, 0x0010, "SH", name}},
        {{0x0008, 0x0060, "CS", "OT"}, {0x0020, 0x000E, "UI", uid}, {0x0020, 0x0011, "IS", n}},
        {{0x0004, 0x1500, "CS", "IMAGES\\" + name},
         {0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.1.1.7"},
         {0x0004, 0x1511, "UI", uid},
         {0x0020, 0x0013, "IS", n}}};
    records.push_back({kTypes[level], attributes[std::size_t(level)]});
    if (level < 3)
      records[std::size_t(index)].lower = AppendChain(records, counts, level + 1, name);
    (previous < 0 ? first : records[std::size_t(previous)].next) = index;
    previous = index;
  }
  return first;
}

}  // namespace

std::string MakeDicomDir(const std::vector<VariantRecord>& records, const VariantLayout& layout) {
  return Encode(records, layout).first;
}

std::uint32_t RecordOffset(const std::vector<VariantRecord>& records, const VariantLayout& layout,
                           int index) {
  return Encode(records, layout).second[std::size_t(index)];
}

std::vector<VariantRecord> MakeTree(int patients, int studies, int series, int images) {
  std::vector<VariantRecord> records;
  AppendChain(records, {patients, studies, series, images}, 0, "");
  return records;
}

}  // namespace halvorine::testing
