// The head of every DICOMDIR: the file meta group and the head of the Basic Directory object,
// Explicit VR Little Endian, in this order (sizes with the element's header):
//
//   (0002,0000) UL 12  group length, filled at encoding
//   (0002,0001) OB 14  02 00 (not the standard's 00 01)
//   (0002,0002) UI 28  "1.2.840.10008.1.3.10"
//   (0002,0003) UI     a new UID for every file
//   (0002,0010) UI 28  "1.2.840.10008.1.2.1"
//   (0002,0012) UI 22  "KORVANEL PACS", though it is no UID
//   (0002,0013) SH 12  "4.0 "
//   (0002,0016) AE     the setting AeTitle, blank-padded to even length
//   (0004,0000) UL 12  group length: up to the end of the header of (0004,1220), records not
//                      included
//   (0004,1130) CS  8  empty
//   (0004,1200) UL 12  offset of the first patient: 0 until linked
//   (0004,1202) UL 12  offset of the last patient: 0 until linked
//   (0004,1212) US 10  0
//   (0004,1220) SQ 12  no items; its length is patched once the records stand behind it
#ifndef HALVORINE_WRITING_FILESETHEADER_H
#define HALVORINE_WRITING_FILESETHEADER_H

#include <functional>
#include <string>

#include "engine/elements/VRContainer.h"
#include "engine/encoding/FileWriter.h"

namespace halvorine {

// Gives the value of a setting, or raises MyException when there is none.
using SettingReader = std::function<std::string(const std::string& key)>;

// Writes the header into a fresh writer and leaves the cursor where the first record goes.
// headerMap gets the position of every element, the group lengths under their group alone.
// Without an AeTitle, raises "Failed to read setting." holding the reader's failure.
void BuildFileSetHeader(DicomEngine::FileWriter& writer, DicomEngine::OffsetMap& headerMap,
                        const SettingReader& getSetting);

}  // namespace halvorine

#endif  // HALVORINE_WRITING_FILESETHEADER_H
