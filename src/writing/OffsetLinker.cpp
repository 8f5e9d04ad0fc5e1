#include "writing/OffsetLinker.h"

#include "support/MyException.h"
#include "writing/WritingCommon.h"

namespace halvorine {
namespace {

// From an element's tag to its value, or to the length field of a sequence.
constexpr std::uint32_t kTagToValue = 8;
constexpr std::uint32_t kRecordSequenceKey = 0x12200004;

std::uint32_t KeyOf(std::uint16_t group, std::uint16_t element) {
  return (std::uint32_t{element} << 16) | group;
}

}  // namespace

void WriteRecord(DicomEngine::VRSequenceItem* record, DicomEngine::BufferWriter& writer,
                 DicomEngine::OffsetMap& recordMap) {
  if (record == nullptr) Raise(kWriterUnit, __LINE__, "The DICOMDIR sequence VR is NULL.");
  writer.WriteUnsignedShort(record->group);
  writer.WriteUnsignedShort(record->element);
  const std::uint32_t lengthPosition = writer.GetCursor();
  writer.WriteLength(record->group, "", 0);
  const std::uint32_t valueStart = writer.GetCursor();
  record->WriteElements(writer, &recordMap);
  const std::uint32_t valueEnd = writer.GetCursor();
  writer.SetCursor(lengthPosition);
  writer.WriteLength(record->group, "", valueEnd - valueStart);
  writer.SetCursor(valueEnd);
}

void LinkOffset(std::uint16_t group, std::uint16_t element, std::uint32_t targetPosition,
                DicomEngine::BufferWriter& writer, const DicomEngine::OffsetMap& map,
                const char* missingText) {
  const auto found = map.find(KeyOf(group, element));
  if (found == map.end()) Raise(kWriterUnit, __LINE__, "%s", missingText);
  writer.WriteUnsignedLongAtPosition(targetPosition + kFilePreambleSize,
                                     found->second + kTagToValue);
}

void CloseRecordSequence(std::uint32_t firstRecordPosition, DicomEngine::BufferWriter& writer,
                         const DicomEngine::OffsetMap& headerMap) {
  const auto found = headerMap.find(kRecordSequenceKey);
  if (found == headerMap.end()) Raise(kWriterUnit, __LINE__, "Can't find the records SQ VR.");
  writer.WriteUnsignedLongAtPosition(writer.GetCursor() - firstRecordPosition,
                                     found->second + kTagToValue);
}

}  // namespace halvorine
