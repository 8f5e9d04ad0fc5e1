#include "reading/DirectoryReader.h"

#include <algorithm>
#include <vector>

#include "engine/dictionary/DicomDictionary.h"
#include "engine/elements/VRSequenceItem.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

using DicomEngine::VR;
using DicomEngine::VRContainer;

constexpr char kUnit[] = "DicomDirImpl";
// An item's tag and length, in every syntax.
constexpr std::uint32_t kItemHeaderSize = 8;

bool IsItem(const VR& element) {
  return element.group == DicomEngine::kItemGroup && element.element == DicomEngine::kItem;
}

bool IsRecordSequence(const VR& element) {
  return element.group == 0x0004 && element.element == 0x1220;
}

}  // namespace

DirectoryReader::DirectoryReader(RecordOffsetIndex& recordOffsetIndex,
                                 const RecordCreators& creators, std::u16string_view directoryName)
    : recordOffsetIndex_(recordOffsetIndex), mapper_(creators, directoryName) {}

void DirectoryReader::ReadDirectory(const std::string& path, SAFEARRAY** ppPatients) {
  const std::int32_t root = IndexRecords(path);
  open_.assign(recordOffsetIndex_.entries.size(), false);
  ChildList patients;
  WalkRecordChain(root, patients, 0);
  RecordMapper::PassOverWrongLevels(patients, RecordLevel::kPatient, 0);
  SafeArrayPtr array = RecordMapper::MakeObjectArray(patients);
  if (array.get() != nullptr) *ppPatients = array.Detach();
}

// The records are indexed as the parser completes them, each handed back to the parser at once, so
// that the elements of a large directory never stand in memory together and the next record reuses
// them; a plain record is indexed from its bytes and makes no elements at all. While (0002,0010)
// hasn't been met the sizes might still change, and the sequence is indexed after the parse
// instead; so is any other sequence than the one that Find gives at the end.
std::int32_t DirectoryReader::IndexRecords(const std::string& path) {
  DicomEngine::DicomDictionary::GetInstance().LoadDictionary("dicom_dictionary.txt");
  DicomEngine::DicomData dataSet(false);
  DicomEngine::FileParser parser;
  ClearIndex(0);
  indexed_ = nullptr;
  parser.SetPlainItemHandler(
      [&](const VR& sequence, const DicomEngine::PlainItem& item, std::uint32_t itemLength) {
        if (!IsIndexed(sequence, dataSet, parser)) return false;
        recordOffsetIndex_.entries.emplace_back(
            offset_, RecordValues(item.Elements(), recordOffsetIndex_.texts));
        ++recordCount_;
        offset_ += kItemHeaderSize + itemLength;
        return true;
      });
  parser.SetEntryHandler([&](const VR& sequence, std::unique_ptr<VR>& entry) {
    if (!IsIndexed(sequence, dataSet, parser)) return;
    IndexEntry(*entry, offset_, parser);
    parser.Recycle(std::move(entry));
  });
  parser.Open(ToWide(path));
  parser.Parse(dataSet);
  parser.ReleaseReader();
  auto* sequence = dynamic_cast<DicomEngine::VRSequence*>(dataSet.Find(0x0004, 0x1220));
  if (sequence == nullptr) Raise(kUnit, __LINE__, "The DICOMDIR sequence tag is missing.");
  if (sequence != indexed_) {
    BuildRecordOffsetIndex(*sequence, LocateRecordSequence(dataSet, parser), parser);
  }
  return ReadOffsetAttribute(dataSet, 0x0004, 0x1200, parser.GetDataOffset());
}

bool DirectoryReader::IsIndexed(const VR& sequence, const DicomEngine::DicomData& dataSet,
                                const DicomEngine::FileParser& parser) {
  if (!IsRecordSequence(sequence) || !parser.IsSyntaxSettled()) return false;
  if (indexed_ == nullptr) {
    indexed_ = &sequence;
    offset_ = LocateRecordSequence(dataSet, parser) + HeaderSize(sequence, parser);
  }
  return indexed_ == &sequence;
}

//   element header   tag 4 | VR field 0 or 2 | length field 4, or 2, or 2 reserved + 4
//   offset of (0004,1220)'s first item = dataOffset + the sizes of the elements before it
//                                        + the header of (0004,1220)
std::uint32_t DirectoryReader::LocateRecordSequence(const DicomEngine::DicomData& dataSet,
                                                    const DicomEngine::FileParser& parser) {
  std::uint32_t offset = parser.GetDataOffset();
  for (const auto& element : dataSet.Elements()) {
    if (IsRecordSequence(*element)) return offset + HeaderSize(*element, parser);
    AdvanceOverElement(offset, *element, parser);
  }
  return offset;
}

void DirectoryReader::BuildRecordOffsetIndex(const DicomEngine::VRSequence& sequence,
                                             std::uint32_t offset,
                                             const DicomEngine::Parser& parser) {
  ClearIndex(sequence.Elements().size());
  for (const auto& entry : sequence.Elements()) {
    if (entry) IndexEntry(*entry, offset, parser);
  }
}

void DirectoryReader::ClearIndex(std::size_t room) {
  recordOffsetIndex_.entries.clear();
  recordOffsetIndex_.entries.reserve(room);
  recordOffsetIndex_.texts.Clear();
  recordCount_ = 0;
}

void DirectoryReader::IndexEntry(const VR& entry, std::uint32_t& offset,
                                 const DicomEngine::Parser& parser) {
  // A delimiter, or a fragment of a sequence that isn't "SQ", is no record.
  const auto* record =
      IsItem(entry) ? DicomEngine::ElementCast<VRContainer, DicomEngine::VRSequenceItem>(entry)
                    : nullptr;
  recordOffsetIndex_.entries.emplace_back(
      offset,
      record ? RecordValues(PlainElementsOf(*record), recordOffsetIndex_.texts) : RecordValues());
  if (IsItem(entry)) ++recordCount_;
  AdvanceOverElement(offset, entry, parser);
}

void DirectoryReader::AdvanceOverElement(std::uint32_t& offset, const VR& element,
                                         const DicomEngine::Parser& parser) {
  offset += HeaderSize(element, parser);
  if (element.length != DicomEngine::kUndefinedLength) {
    offset += element.length;
    return;
  }
  const auto* container =
      DicomEngine::ElementCast<VRContainer, DicomEngine::VRSequenceItem, DicomEngine::VRSequence>(
          element);
  if (container == nullptr) return;
  for (const auto& inner : container->Elements()) {
    if (inner) AdvanceOverElement(offset, *inner, parser);
  }
}

// Siblings in a loop, levels by recursion: the stack grows with the depth of the directory,
// which kMaxDepth bounds.
void DirectoryReader::WalkRecordChain(std::int32_t offset, ChildList& childList, int depth) {
  if (offset == 0) return;
  std::vector<std::size_t> chain;
  while (true) {
    const auto key = static_cast<std::uint32_t>(offset);
    const std::size_t position = PositionOf(key);
    const RecordValues& record = recordOffsetIndex_.entries[position].second;
    Enter(position, depth);
    chain.push_back(position);
    ChildList children;
    const std::int32_t lower = record.lower.Read(key);
    if (lower > 0) WalkRecordChain(lower, children, depth + 1);
    childList.push_back(mapper_.MapRecord(record, key, children));
    const std::int32_t next = record.next.Read(key);
    if (next < 1) break;
    offset = next;
  }
  // Records linked from elsewhere as well are no cycle: each place gets its own objects.
  for (const std::size_t position : chain) open_[position] = false;
}

std::uint32_t DirectoryReader::HeaderSize(const VR& element, const DicomEngine::Parser& parser) {
  return 4 + parser.GetVRFieldSize(element.group, element.element) +
         parser.GetLengthFieldSize(element.vrCode.View(), element.group, element.element);
}

// Writers mostly store records in the order that the walk visits them, so the entry behind the
// last one found is tried before the search, which on a large directory misses the cache at every
// step.
std::size_t DirectoryReader::PositionOf(std::uint32_t offset) {
  const auto& entries = recordOffsetIndex_.entries;
  std::size_t position = nextGuess_;
  if (position >= entries.size() || entries[position].first != offset) {
    position = static_cast<std::size_t>(
        std::lower_bound(entries.begin(), entries.end(), offset,
                         [](const auto& entry, std::uint32_t key) { return entry.first < key; }) -
        entries.begin());
  }
  if (position == entries.size() || entries[position].first != offset ||
      !entries[position].second.IsRecord()) {
    Raise(kUnit, __LINE__, "No DICOMDIR record begins at offset %u.", offset);
  }
  nextGuess_ = position + 1;
  return position;
}

void DirectoryReader::Enter(std::size_t position, int depth) {
  const std::uint32_t offset = recordOffsetIndex_.entries[position].first;
  if (open_[position]) {
    Raise(kUnit, __LINE__, "The DICOMDIR record at offset %u is linked in a cycle.", offset);
  }
  open_[position] = true;
  if (depth >= kMaxDepth) {
    Raise(kUnit, __LINE__, "The DICOMDIR record at offset %u is nested deeper than %d levels.",
          offset, kMaxDepth);
  }
  if (++recordsWalked_ > kExpansionLimit * recordCount_) {
    Raise(kUnit, __LINE__,
          "The DICOMDIR links reach the record at offset %u once too often: more than %zu "
          "objects from %zu records.",
          offset, kExpansionLimit * recordCount_, recordCount_);
  }
}

}  // namespace halvorine
