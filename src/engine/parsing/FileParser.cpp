#include "engine/parsing/FileParser.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

#include "engine/parsing/MultiChunkBuffer.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "FileParser";
constexpr long kMarkOffset = 128;
constexpr std::uint32_t kElementsBehindMark = 132;
// The message is formed in at most this many characters before it takes the usual form.
constexpr std::size_t kOpenMessageSize = 2048;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File OpenForReading(const std::string& name) {
  return File(std::fopen(name.c_str(), "rb"), &std::fclose);
}

// An unreadable number stays 0xFFFF.
std::uint16_t ReadUnsignedShort(std::FILE* file) {
  std::array<unsigned char, 2> bytes{0xFF, 0xFF};
  if (std::fread(bytes.data(), 1, bytes.size(), file) != bytes.size()) return 0xFFFF;
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

// The sixth byte of the first element is the VR's second letter in an explicit stream, at least
// 0x41, and the second byte of the 32-bit length in an implicit one, below 11 for a first element
// of under 2816 bytes. A byte from 0x80 up counts as negative, and so as implicit.
SyntaxRecord GuessFirstSyntax(std::FILE* file) {
  std::array<std::int8_t, 6> bytes{};
  const bool whole = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return SyntaxRecord(whole && bytes[5] > 10 ? kExplicitVR : kImplicitVR, 0);
}

}  // namespace

bool FileParser::Open(const std::u16string& fileName) {
  if (fileName.empty())
    halvorine::Raise(kUnit, __LINE__, "The name of the file to parse is empty.");
  const std::string name = halvorine::ToNarrow(fileName);
  File file = OpenForReading(name);
  // A dot anywhere, in a folder's name too, means that the name is taken as given.
  if (file == nullptr && fileName.find(u'.') == std::u16string::npos) {
    file = OpenForReading(name + ".dcm");
  }
  if (file == nullptr) {
    const unsigned lastError = static_cast<unsigned>(errno);
    const std::string message = halvorine::FormatBounded(
        kOpenMessageSize, "The %s file cannot be opened. The last error is (in hexa): 0x%X",
        name.c_str(), lastError);
    halvorine::Raise(kUnit, __LINE__, "%s", message.c_str());
  }
  return Open(file.release());
}

bool FileParser::Open(std::FILE* stream) {
  File file(stream, &std::fclose);
  dataOffset_ = 0;
  if (!CheckFileHeader(file.get())) return false;
  const SyntaxRecord firstGuess = GuessFirstSyntax(file.get());
  std::fseek(file.get(), static_cast<long>(dataOffset_), SEEK_SET);
  halvorine::MultiChunkBuffer buffer;
  if (!halvorine::ReadBinaryFileIntoBuffer(file.release(), &buffer)) {
    halvorine::Raise(kUnit, __LINE__, "Failed to read the DICOM file data.");
  }
  SetReader(std::make_unique<BufferReader>(std::move(buffer)), firstGuess);
  return true;
}

// Without the mark, only a bare data set that begins with group 0008, or a file that begins with
// group 8000, is taken; the preamble is never looked at.
bool FileParser::CheckFileHeader(std::FILE* file) {
  std::array<char, 4> mark{};
  if (std::fseek(file, kMarkOffset, SEEK_SET) == 0 &&
      std::fread(mark.data(), 1, mark.size(), file) == mark.size() &&
      std::memcmp(mark.data(), "DICM", mark.size()) == 0) {
    dataOffset_ = kElementsBehindMark;
    return true;
  }
  std::fseek(file, 0, SEEK_SET);
  const std::uint16_t group = ReadUnsignedShort(file);
  if (group != 0x0008 && group != 0x8000) return false;
  std::fseek(file, 0, SEEK_SET);
  return true;
}

}  // namespace DicomEngine
