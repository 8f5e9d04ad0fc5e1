// The body of a load: parses a DICOMDIR, works out from the elements' sizes at which byte of the
// file each directory record begins, and follows the records' links from the root chain down,
// children first, handing each record to the RecordMapper.
//
// The walk ends the load with a failure that names the offset for a link to where no record
// begins, for a record reached again inside its own chain or subtree (a cycle), for records
// nested deeper than kMaxDepth, and when shared chains would make more than
// kExpansionLimit objects per record of the file.
#ifndef HALVORINE_READING_DIRECTORYREADER_H
#define HALVORINE_READING_DIRECTORYREADER_H

#include <halvorine/com.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/elements/DicomData.h"
#include "engine/elements/VRSequence.h"
#include "engine/parsing/FileParser.h"
#include "reading/RecordMapper.h"
#include "reading/RecordValues.h"
#include "reading/TextStore.h"

namespace halvorine {

// From the file offset of an item's tag to what the load reads of the item, in ascending order of
// offsets: entries are added in file order, and each one is at least a header further on, so a
// sorted vector serves as the ordered map. The entries' texts live in texts.
struct RecordOffsetIndex {
  std::vector<std::pair<std::uint32_t, RecordValues>> entries;
  TextStore texts;

  friend bool operator==(const RecordOffsetIndex& a, const RecordOffsetIndex& b) {
    return a.entries == b.entries;
  }
};

class DirectoryReader {
 public:
  static constexpr int kMaxDepth = 64;
  static constexpr std::size_t kExpansionLimit = 8;

  // The reader fills recordOffsetIndex, which its caller keeps; directoryName roots the image
  // paths.
  DirectoryReader(RecordOffsetIndex& recordOffsetIndex, const RecordCreators& creators,
                  std::u16string_view directoryName);

  // Parses the file at path and stores the array of patients in *ppPatients, last of all: on
  // a failure *ppPatients is untouched and every object made so far is released. With no
  // patient it stores nothing.
  void ReadDirectory(const std::string& path, SAFEARRAY** ppPatients);

  // The file offset of the first item of (0004,1220), which must be in dataSet.
  static std::uint32_t LocateRecordSequence(const DicomEngine::DicomData& dataSet,
                                            const DicomEngine::FileParser& parser);
  void BuildRecordOffsetIndex(const DicomEngine::VRSequence& sequence, std::uint32_t offset,
                              const DicomEngine::Parser& parser);
  // Moves offset over element, header and value; undefined lengths are summed from the parts.
  static void AdvanceOverElement(std::uint32_t& offset, const DicomEngine::VR& element,
                                 const DicomEngine::Parser& parser);
  // The first number of the offset attribute; where is the offset of container, for the message.
  static std::int32_t ReadOffsetAttribute(const DicomEngine::VRContainer& container,
                                          std::uint16_t group, std::uint16_t element,
                                          std::uint32_t where) {
    return RecordLink(PlainElementsOf(container), group, element).Read(where);
  }
  // Appends one entry per record of the chain that starts at offset to childList.
  void WalkRecordChain(std::int32_t offset, ChildList& childList, int depth);

 private:
  // Parses the file and fills the index; the parsed tree goes when it returns. The root link.
  std::int32_t IndexRecords(const std::string& path);
  void ClearIndex(std::size_t room);
  // Whether the parser's entries of sequence are the records to index, at offset.
  bool IsIndexed(const DicomEngine::VR& sequence, const DicomEngine::DicomData& dataSet,
                 const DicomEngine::FileParser& parser);
  // Adds the entry at offset and moves offset behind it.
  void IndexEntry(const DicomEngine::VR& entry, std::uint32_t& offset,
                  const DicomEngine::Parser& parser);
  static std::uint32_t HeaderSize(const DicomEngine::VR& element,
                                  const DicomEngine::Parser& parser);
  // The index entry of the record at offset; raises when no record begins there.
  std::size_t PositionOf(std::uint32_t offset);
  void Enter(std::size_t position, int depth);

  RecordOffsetIndex& recordOffsetIndex_;
  RecordMapper mapper_;
  std::size_t recordCount_ = 0;
  std::size_t recordsWalked_ = 0;
  std::size_t nextGuess_ = 0;  // the entry behind the one that PositionOf found last
  // While parsing: the sequence whose entries are indexed, and the offset of the next one.
  const DicomEngine::VR* indexed_ = nullptr;
  std::uint32_t offset_ = 0;
  // By index entry: whether the walk is inside that record's chain or subtree.
  std::vector<bool> open_;
};

}  // namespace halvorine

#endif  // HALVORINE_READING_DIRECTORYREADER_H
