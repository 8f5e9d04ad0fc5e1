// Binds the parser to a file: finds where the elements begin, makes the first guess at the
// encoding and gives the parser a reader over the rest of the file, held in memory in chunks.
//
//   with the mark     0: preamble, 128 bytes | 128: "DICM" | 132: elements   dataOffset 132
//   without it        0: elements, the first of group 0008 or 8000           dataOffset 0
//
// The preamble and the mark never enter the buffer, so a buffer offset plus dataOffset is an
// offset in the file. The file is closed before Open returns; its bytes stay in memory until the
// parser is destroyed, and the parsed elements hold copies of their own.
#ifndef HALVORINE_ENGINE_PARSING_FILEPARSER_H
#define HALVORINE_ENGINE_PARSING_FILEPARSER_H

#include <cstdint>
#include <cstdio>
#include <string>

#include "engine/parsing/Parser.h"

namespace DicomEngine {

class FileParser final : public Parser {
 public:
  FileParser() = default;

  // True when the parser now has a reader; false, and Parse fails, when the file isn't taken for
  // DICOM. A name without any '.' that can't be opened is tried once more with ".dcm" behind it.
  // Raises when neither opens and when the bytes can't be read.
  bool Open(const std::u16string& fileName);
  // The same for a stream open for binary reading, which is read from its start and closed.
  bool Open(std::FILE* stream);

  std::uint32_t GetDataOffset() const { return dataOffset_; }

 private:
  // Leaves the stream where the elements begin.
  bool CheckFileHeader(std::FILE* file);

  std::uint32_t dataOffset_ = 0;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_PARSING_FILEPARSER_H
