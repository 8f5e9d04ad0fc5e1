// A BufferWriter that knows what a DICOM file needs around the stream: the file meta group is
// always explicit VR little endian, and the file opens with the preamble:
//
//   offset 0     128 bytes 0x00
//   offset 128   "DICM"
//   offset 132   the stream: a position in the stream plus 132 is its offset in the file
//
// The stream stays in memory until WriteToFile puts it on disc in one go. The file routines
// below this class report their troubles to the trace log, not to the caller.
#ifndef HALVORINE_ENGINE_ENCODING_FILEWRITER_H
#define HALVORINE_ENGINE_ENCODING_FILEWRITER_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "engine/elements/DicomData.h"
#include "engine/elements/VRContainer.h"
#include "engine/encoding/BufferWriter.h"

namespace DicomEngine {

class FileWriter final : public BufferWriter {
 public:
  // The syntax stays unset until WriteDataSet.
  FileWriter();

  // Explicit VR little endian below group 3, implicit for group FFFE, else the data set's syntax.
  SyntaxRecord GetSyntaxForGroup(std::uint16_t group) const override;

  // Writes the data set behind whatever the stream holds, in the syntax that its (0002,0010)
  // names, or Explicit VR Little Endian when it names none that is known. A non-empty uid
  // replaces the value of (0002,0010); a missing (0002,0010) is inserted, with uid or else the
  // UID of syntaxRecord. offsets may be null.
  void WriteDataSet(DicomData& data, OffsetMap* offsets, SyntaxRecord syntaxRecord,
                    const std::string& uid);

  // Creates or empties the file and writes the preamble and the stream. Raises when the name is
  // empty or the file can't be made; a failed write only reaches the trace log.
  void WriteToFile(const std::u16string& fileName);
};

// Closes a stream; nothing for a null one.
void CloseTargetFile(std::FILE* stream);

struct TargetFileCloser {
  void operator()(std::FILE* stream) const { CloseTargetFile(stream); }
};
using TargetFile = std::unique_ptr<std::FILE, TargetFileCloser>;

// Creates the file, or empties it, and opens it for writing; null, after a trace line at level 1,
// when that fails.
TargetFile CreateTargetFile(const std::string& name);

// Gives the count of bytes written, 0 for a null stream or block; a short write is traced at
// level 1 and not reported otherwise.
std::int32_t WriteBufferToFile(std::FILE* stream, const void* data, std::int32_t size);

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ENCODING_FILEWRITER_H
