#include "engine/encoding/FileWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "engine/elements/VRUniqueIdentifier.h"
#include "support/MyException.h"
#include "support/TextConversion.h"
#include "support/TraceLog.h"

namespace DicomEngine {
namespace {

constexpr char kUnit[] = "FileWriter";
constexpr std::size_t kTraceBufferSize = 2048;
constexpr std::uint16_t kTransferSyntaxUid = 0x0010;

constexpr std::array<std::uint8_t, 132> MakePreamble() {
  std::array<std::uint8_t, 132> preamble{};
  preamble[128] = 'D';
  preamble[129] = 'I';
  preamble[130] = 'C';
  preamble[131] = 'M';
  return preamble;
}

constexpr std::array<std::uint8_t, 132> kPreamble = MakePreamble();

VRUniqueIdentifier* FindTransferSyntaxUid(const DicomData& data) {
  return dynamic_cast<VRUniqueIdentifier*>(data.Find(kMetaGroup, kTransferSyntaxUid));
}

void EnsureTransferSyntaxUid(DicomData& data, SyntaxRecord syntaxRecord, const std::string& uid) {
  if (VRUniqueIdentifier* existing = FindTransferSyntaxUid(data)) {
    if (!uid.empty()) existing->SetValue(uid);
    return;
  }
  std::string value = uid.empty() ? TransferSyntax::GetUid(syntaxRecord) : uid;
  const auto length = static_cast<std::uint32_t>(value.size());
  data.Insert(std::make_unique<VRUniqueIdentifier>("UI", kMetaGroup, kTransferSyntaxUid, length,
                                                   std::move(value)));
}

SyntaxRecord ReadSyntaxFromDataSet(const DicomData& data) {
  const VRUniqueIdentifier* element = FindTransferSyntaxUid(data);
  const SyntaxRecord* record =
      element == nullptr ? nullptr : TransferSyntax::GetInstance().Find(element->GetValue());
  return record == nullptr ? kExplicitLittleEndian : *record;
}

}  // namespace

FileWriter::FileWriter() : BufferWriter("") {}

SyntaxRecord FileWriter::GetSyntaxForGroup(std::uint16_t group) const {
  if (group < 3) return kExplicitLittleEndian;
  if (group == kItemGroup) return kImplicitLittleEndian;
  return GetSyntax();
}

void FileWriter::WriteDataSet(DicomData& data, OffsetMap* offsets, SyntaxRecord syntaxRecord,
                              const std::string& uid) {
  EnsureTransferSyntaxUid(data, syntaxRecord, uid);
  SetSyntax(ReadSyntaxFromDataSet(data));
  data.WriteElements(*this, offsets);
}

void FileWriter::WriteToFile(const std::u16string& fileName) {
  if (fileName.empty()) {
    halvorine::Raise(kUnit, __LINE__, "The file name passed to the File Writer is empty.");
  }
  const std::string name = halvorine::ToNarrow(fileName);
  const TargetFile stream = CreateTargetFile(name);
  if (stream == nullptr) {
    halvorine::Raise(kUnit, __LINE__, "The Dicom File Writer failed to create the %s DICOM file.",
                     name.c_str());
  }
  WriteBufferToFile(stream.get(), kPreamble.data(), static_cast<std::int32_t>(kPreamble.size()));
  WriteBufferToFile(stream.get(), GetBuffer(), static_cast<std::int32_t>(GetCursor()));
}

void CloseTargetFile(std::FILE* stream) {
  if (stream != nullptr) std::fclose(stream);
}

TargetFile CreateTargetFile(const std::string& name) {
  if (name.empty()) {
    halvorine::Trace("The file name is empty.", 1);
    return nullptr;
  }
  // Made first through the file system alone, so that a failure carries its own error number;
  // POSIX has no share modes that would keep others from writing meanwhile.
  const int descriptor = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    halvorine::Trace(
        halvorine::FormatBounded(
            kTraceBufferSize, "Cannot create the %s target file. The last error is (in hexa): 0x%X",
            name.c_str(), static_cast<unsigned>(errno)),
        1);
    return nullptr;
  }
  close(descriptor);
  TargetFile stream(std::fopen(name.c_str(), "w+b"));
  if (stream == nullptr) {
    halvorine::Trace(
        halvorine::FormatBounded(
            kTraceBufferSize, "Cannot open the %s target file. The last error is (in hexa): 0x%X",
            name.c_str(), static_cast<unsigned>(errno)),
        1);
    return nullptr;
  }
  // Unbuffered, so that a failing write shows in WriteBufferToFile's count and not only at the
  // close, where nobody looks.
  std::setvbuf(stream.get(), nullptr, _IONBF, 0);
  return stream;
}

std::int32_t WriteBufferToFile(std::FILE* stream, const void* data, std::int32_t size) {
  if (stream == nullptr) halvorine::Trace("The passed in destination file handle is NULL.", 1);
  if (data == nullptr) halvorine::Trace("The passed in data buffer is NULL.", 1);
  if (stream == nullptr || data == nullptr) return 0;
  const std::size_t wanted = size < 0 ? 0 : static_cast<std::size_t>(size);
  const auto written = static_cast<std::int32_t>(std::fwrite(data, 1, wanted, stream));
  if (written != size) {
    halvorine::Trace(
        halvorine::FormatBounded(kTraceBufferSize,
                                 "Error writing into the target file. The last error is (in hexa): "
                                 "0x%X",
                                 static_cast<unsigned>(errno)),
        1);
  }
  return written;
}

}  // namespace DicomEngine
