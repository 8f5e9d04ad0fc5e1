// What the writer's tests share: trees of record objects made through the class objects, a
// DICOMDIR read back byte by byte, and a file system that notes copies and fails them on demand.
#ifndef HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
#define HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H

#include <halvorine/dicomdir.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/encoding/BufferWriter.h"
#include "platform/BString.h"
#include "platform/ComPtr.h"
#include "platform/FileSystem.h"
#include "platform/SafeArrayPtr.h"
#include "support/SettingsHelper.h"

namespace halvorine {

// New objects through the class objects, as a host makes them.
ComPtr<IDicomDirImpl> NewService();
ComPtr<IDicomDirPatient> NewPatient();
ComPtr<IDicomDirStudy> NewStudy();
ComPtr<IDicomDirSeries> NewSeries();
ComPtr<IDicomDirImage> NewImage();

BString Bstr(std::u16string_view text);
BString Bstr(const std::string& narrowText);

// Every test that makes objects of the component leaves none alive.
class ObjectsReleasedTest : public testing::Test {
 protected:
  void TearDown() override;
};

// Patients, their studies, their series, and the count of images in each series.
using TreeShape = std::vector<std::vector<std::vector<int>>>;

// A tree of that shape, every field that a record carries filled from the indices, each image
// naming imageSource. A patient or study without children holds an empty array; a series
// without images keeps its null array, as a load leaves it.
SafeArrayPtr MakeTree(const TreeShape& shape, const std::string& imageSource, LONG lowerBound = 0);

// Makes the disc "Disc" of tree below folder through the service, as a host does, and gives
// the path of its DICOMDIR; a failing call fails the test.
std::string CreateDiscThroughService(const std::string& folder, SAFEARRAY* tree);

// What the command line writes to its output and error streams; a command that can't be run
// (an oracle that tools/setup.sh hasn't installed) fails the test.
std::string RunTool(const std::string& commandLine);

// A settings table of its own with the one line <add key="AeTitle" value="aeTitle"/>, or with
// none when aeTitle is null.
SettingsHelper MakeSettings(const std::string& folder, const char* aeTitle);

// The element key of the maps below: group << 16 | element.
constexpr std::uint32_t Tag(std::uint16_t group, std::uint16_t element) {
  return std::uint32_t{group} << 16 | element;
}

// The value bytes of each element, read with the explicit VR little endian rules alone.
using ElementValues = std::map<std::uint32_t, std::string>;

struct DirectoryRecord {
  std::uint32_t offset;  // in the file, of its (FFFE,E000)
  ElementValues values;
};

struct DirectoryFile {
  std::string bytes;
  ElementValues header;
  std::uint32_t sequenceLength = 0;
  std::uint32_t firstRecordOffset = 0;  // where the records begin, behind the header
  std::vector<DirectoryRecord> records;
};

DirectoryFile ReadDirectoryFile(const std::string& path);

// Bytes made independently of the encoder: a number little-endian, and one element in explicit
// VR little endian, with the long length form for OB and SQ.
std::string LittleEndian(std::uint32_t value, int size);
std::string Encoded(std::uint16_t group, std::uint16_t element, const std::string& code,
                    const std::string& value);
// The writer's stream as bytes.
std::string BytesOf(const DicomEngine::BufferWriter& writer);
std::uint32_t ULOf(const std::string& value);

// The real file system, but the copy numbered failAt (from 0) gives error instead.
class ScriptedFileSystem final : public FileSystem {
 public:
  explicit ScriptedFileSystem(int failAt = -1, int error = 0) : failAt_(failAt), error_(error) {}
  int MakeDirectory(const std::string& path) override;
  int CopyFileNoReplace(const std::string& source, const std::string& target) override;

 private:
  int copies_ = 0;
  int failAt_;
  int error_;
};

}  // namespace halvorine

#endif  // HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
