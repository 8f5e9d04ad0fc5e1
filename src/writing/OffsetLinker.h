// The links between the records of a DICOMDIR, set in one pass. The whole file is built in the
// writer's buffer; each record is appended with zeros in its links, and a link is patched in
// place when the cursor stands where its target begins. The file on disc is the buffer behind
// the preamble, so a buffer position p is the file offset p + 132.
//
// A record in the buffer, with no VR field and no delimiter:
//
//   offset  size  content
//   0       2     FE FF
//   2       2     00 E0
//   4       4     length of the elements behind it, little-endian, always defined
//   8             the record's elements, explicit VR little endian, in tag order
//
// An OffsetMap notes where each element's tag starts, under the key element << 16 | group; the
// value of a UL, and the length of a SQ, stand 8 bytes behind the tag. Positions stay valid while
// the buffer grows, and the element objects may be gone by the time their bytes are patched.
#ifndef HALVORINE_WRITING_OFFSETLINKER_H
#define HALVORINE_WRITING_OFFSETLINKER_H

#include <cstdint>

#include "engine/elements/VRContainer.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/encoding/BufferWriter.h"

namespace halvorine {

// The 128 zero bytes and "DICM" that stand in front of the buffer in the file.
inline constexpr std::uint32_t kFilePreambleSize = 132;

// Appends the record at the cursor and notes its elements in recordMap. Raises "The DICOMDIR
// sequence VR is NULL." for a null record.
void WriteRecord(DicomEngine::VRSequenceItem* record, DicomEngine::BufferWriter& writer,
                 DicomEngine::OffsetMap& recordMap);

// Puts the file offset of targetPosition into the UL (group,element) that map notes. Raises
// missingText when the map lacks it.
void LinkOffset(std::uint16_t group, std::uint16_t element, std::uint32_t targetPosition,
                DicomEngine::BufferWriter& writer, const DicomEngine::OffsetMap& map,
                const char* missingText);

// Puts the length of the records, from firstRecordPosition to the cursor, into the length field
// of (0004,1220). A length, not an offset: no 132 in it.
void CloseRecordSequence(std::uint32_t firstRecordPosition, DicomEngine::BufferWriter& writer,
                         const DicomEngine::OffsetMap& headerMap);

}  // namespace halvorine

#endif  // HALVORINE_WRITING_OFFSETLINKER_H
