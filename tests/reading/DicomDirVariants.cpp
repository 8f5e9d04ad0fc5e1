#include "DicomDirVariants.h"

#include <numeric>

namespace halvorine::testing {
namespace {

constexpr std::uint32_t kUndefined = 0xFFFFFFFF;

void PutShort(std::string& out, std::uint32_t value) {
  out += static_cast<char>(value & 0xFF);
  out += static_cast<char>((value >> 8) & 0xFF);
}

void PutLong(std::string& out, std::uint32_t value) {
  PutShort(out, value & 0xFFFF);
  PutShort(out, value >> 16);
}

bool LongHeader(const std::string& vr) {
  return vr == "OB" || vr == "OW" || vr == "SQ" || vr == "UN" || vr == "UT";
}

// Group FFFE has no VR field in any syntax.
std::string Header(std::uint16_t group, std::uint16_t element, const std::string& vr,
                   std::uint32_t length, bool implicitVR) {
  std::string out;
  PutShort(out, group);
  PutShort(out, element);
  if (implicitVR || group == 0xFFFE) {
    PutLong(out, length);
  } else if (LongHeader(vr)) {
    out += vr + std::string(2, '\0');
    PutLong(out, length);
  } else {
    out += vr;
    PutShort(out, length);
  }
  return out;
}

std::string Element(std::uint16_t group, std::uint16_t element, const std::string& vr,
                    std::string value, bool implicitVR) {
  if (value.size() % 2 != 0) value += vr == "UI" ? '\0' : ' ';
  return Header(group, element, vr, static_cast<std::uint32_t>(value.size()), implicitVR) + value;
}

std::string Long(std::uint16_t group, std::uint16_t element, std::uint32_t value, bool implicit) {
  std::string bytes;
  PutLong(bytes, value);
  return Element(group, element, "UL", bytes, implicit);
}

std::string Short(std::uint16_t group, std::uint16_t element, std::uint32_t value, bool implicit) {
  std::string bytes;
  PutShort(bytes, value);
  return Element(group, element, "US", bytes, implicit);
}

std::string Delimiter(std::uint16_t element) { return Header(0xFFFE, element, "", 0, true); }

// An undefined-length sequence of one undefined-length item, as icon images often come.
std::string IconImage(bool implicit) {
  return Header(0x0088, 0x0200, "SQ", kUndefined, implicit) +
         Header(0xFFFE, 0xE000, "", kUndefined, true) + Short(0x0028, 0x0002, 1, implicit) +
         Short(0x0028, 0x0010, 1, implicit) + Delimiter(0xE00D) + Delimiter(0xE0DD);
}

std::string Item(const std::string& content, bool undefined) {
  if (!undefined) {
    return Header(0xFFFE, 0xE000, "", static_cast<std::uint32_t>(content.size()), true) + content;
  }
  return Header(0xFFFE, 0xE000, "", kUndefined, true) + content + Delimiter(0xE00D);
}

std::vector<int> PhysicalOrder(std::size_t count, const VariantLayout& layout) {
  if (!layout.order.empty()) return layout.order;
  std::vector<int> order(count);
  std::iota(order.begin(), order.end(), 0);
  return order;
}

class Encoder {
 public:
  Encoder(const std::vector<VariantRecord>& records, const VariantLayout& layout)
      : records_(records), layout_(layout), offsets_(records.size(), 0) {
    // The sizes don't depend on the links' values, so a first pass finds the offsets.
    Encode();
    Encode();
  }

  const std::string& File() const { return file_; }
  std::uint32_t OffsetOf(int index) const { return offsets_[static_cast<std::size_t>(index)]; }

 private:
  std::uint32_t Link(int index) const { return index < 0 ? 0 : OffsetOf(index); }

  std::string Record(const VariantRecord& record) const {
    const bool implicit = layout_.implicitVR;
    std::string content;
    if (record.nextForm == VariantRecord::Form::kNumber) {
      content += Long(0x0004, 0x1400, record.rawNext.value_or(Link(record.next)), implicit);
    } else if (record.nextForm == VariantRecord::Form::kEmpty) {
      content += Element(0x0004, 0x1400, "UL", "", implicit);
    }
    content += Short(0x0004, 0x1410, 0xFFFF, implicit);
    content += Long(0x0004, 0x1420, record.rawLower.value_or(Link(record.lower)), implicit);
    content += Element(0x0004, 0x1430, "CS", record.type, implicit);
    for (const VariantAttribute& a : record.attributes) {
      content += Element(a.group, a.element, a.vr, a.value, implicit);
    }
    if (record.iconImage) content += IconImage(implicit);
    return Item(content, layout_.undefinedItems);
  }

  void Encode() {
    const bool implicit = layout_.implicitVR;
    std::string head;
    if (layout_.preamble) {
      std::string meta = Element(0x0002, 0x0001, "OB", std::string("\0\1", 2), false) +
                         Element(0x0002, 0x0002, "UI", "1.2.840.10008.1.3.10", false) +
                         Element(0x0002, 0x0003, "UI", "1.2.3.4", false) +
                         Element(0x0002, 0x0010, "UI",
                                 implicit ? "1.2.840.10008.1.2" : "1.2.840.10008.1.2.1", false);
      head = std::string(128, '\0') + "DICM" +
             Long(0x0002, 0x0000, static_cast<std::uint32_t>(meta.size()), false) + meta;
    } else {
      // A bare data set is only taken when it begins with group 0008.
      head = Element(0x0008, 0x0005, "CS", "ISO_IR 100", implicit);
    }
    const std::uint32_t root = layout_.rawRoot.value_or(Link(layout_.root));
    head += Element(0x0004, 0x1130, "CS", "VARIANT", implicit) +
            Long(0x0004, 0x1200, root, implicit) + Long(0x0004, 0x1202, 0, implicit) +
            Short(0x0004, 0x1212, 0, implicit);
    // The links of this pass use the offsets of the one before.
    std::vector<std::uint32_t> offsets(records_.size(), 0);
    std::string items;
    for (const int index : PhysicalOrder(records_.size(), layout_)) {
      offsets[static_cast<std::size_t>(index)] = static_cast<std::uint32_t>(items.size());
      items += Record(records_[static_cast<std::size_t>(index)]);
    }
    const std::uint32_t length =
        layout_.undefinedItems ? kUndefined : static_cast<std::uint32_t>(items.size());
    const std::string sequenceHeader = Header(0x0004, 0x1220, "SQ", length, implicit);
    const auto firstItem = static_cast<std::uint32_t>(head.size() + sequenceHeader.size());
    for (std::uint32_t& offset : offsets) offset += firstItem;
    offsets_ = offsets;
    std::string sequence = sequenceHeader + items;
    if (layout_.undefinedItems) sequence += Delimiter(0xE0DD);
    file_ = head + sequence;
  }

  const std::vector<VariantRecord>& records_;
  const VariantLayout& layout_;
  std::vector<std::uint32_t> offsets_;
  std::string file_;
};

}  // namespace

std::string MakeDicomDir(const std::vector<VariantRecord>& records, const VariantLayout& layout) {
  return Encoder(records, layout).File();
}

std::uint32_t RecordOffset(const std::vector<VariantRecord>& records, const VariantLayout& layout,
                           int index) {
  return Encoder(records, layout).OffsetOf(index);
}

std::vector<VariantRecord> MakeTree(int patients, int studies, int series, int images) {
  std::vector<VariantRecord> records;
  // Appends the chain of count records that make gives, and returns the first one's index.
  auto chain = [&records](int count, auto make) {
    int first = -1;
    int previous = -1;
    for (int i = 1; i <= count; ++i) {
      const int index = make(i);
      if (previous >= 0) records[static_cast<std::size_t>(previous)].next = index;
      if (first < 0) first = index;
      previous = index;
    }
    return first;
  };
  chain(patients, [&](int p) {
    const std::string name = "P" + std::to_string(p);
    const int index = static_cast<int>(records.size());
    records.push_back(VariantRecord(
        "PATIENT", {{0x0010, 0x0010, "PN", name + "^Name"}, {0x0010, 0x0020, "LO", name}}));
    const int lower = chain(studies, [&](int s) {
      const std::string study = name + "S" + std::to_string(s);
      const int at = static_cast<int>(records.size());
      records.push_back(VariantRecord(
          "STUDY", {{0x0008, 0x0020, "DA", "2024030" + std::to_string(s)},
                    {0x0008, 0x0030, "TM", "1230"},
                    {0x0008, 0x0050, "SH", study + "A"},
                    {0x0008, 0x1030, "LO", study + " description"},
                    {0x0020, 0x000D, "UI", "1.2." + std::to_string(p) + "." + std::to_string(s)},
                    {0x0020, 0x0010, "SH", study}}));
      const int seriesFirst = chain(series, [&](int r) {
        const std::string serie = study + "R" + std::to_string(r);
        const int here = static_cast<int>(records.size());
        records.push_back(
            VariantRecord("SERIES", {{0x0008, 0x0060, "CS", "OT"},
                                     {0x0020, 0x000E, "UI", "1.3." + std::to_string(here)},
                                     {0x0020, 0x0011, "IS", std::to_string(r)}}));
        const int imageFirst = chain(images, [&](int i) {
          const int image = static_cast<int>(records.size());
          records.push_back(VariantRecord(
              "IMAGE", {{0x0004, 0x1500, "CS", "IMAGES\\" + serie + "I" + std::to_string(i)},
                        {0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.1.1.7"},
                        {0x0004, 0x1511, "UI", "1.4." + std::to_string(image)},
                        {0x0020, 0x0013, "IS", std::to_string(i)}}));
          return image;
        });
        records[static_cast<std::size_t>(here)].lower = imageFirst;
        return here;
      });
      records[static_cast<std::size_t>(at)].lower = seriesFirst;
      return at;
    });
    records[static_cast<std::size_t>(index)].lower = lower;
    return index;
  });
  return records;
}

}  // namespace halvorine::testing
