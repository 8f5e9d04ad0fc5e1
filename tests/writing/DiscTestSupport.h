// What the writer's tests share: trees of record objects made through the class objects, a
// DICOMDIR read back byte by byte, and a file system that fails copies on demand.
#ifndef HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
#define HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "engine/encoding/BufferWriter.h"
#include "platform/BString.h"
#include "platform/ComPtr.h"
#include "platform/FileSystem.h"
#include "platform/SafeArrayPtr.h"

namespace halvorine {

// A new object through its class object, as a host makes it.
template <class Interface>
ComPtr<Interface> New(REFCLSID clsid, REFIID iid) {
  ComPtr<Interface> object;
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(
      DllGetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Receive())),
      S_OK);
  if (factory) {
    EXPECT_EQ(factory->CreateInstance(nullptr, iid, reinterpret_cast<void**>(object.Receive())),
              S_OK);
  }
  return object;
}
#define HALVORINE_NEW(Name) New<I##Name>(CLSID_##Name, IID_I##Name)

BString Bstr(const std::string& narrowText);

// Every test that makes objects of the component leaves none alive.
class ObjectsReleasedTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(DllCanUnloadNow(), S_OK) << "an object of the component outlived its test";
  }
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

// What tool prints of the DICOMDIR of a disc of 2 patients, 3 studies, 3 series and 3 images.
// A tool that can't be run (an oracle that tools/setup.sh hasn't installed) fails the test.
std::string ToolOutputOfADisc(const std::string& tool);

// The value bytes of each element by group << 16 | element, read with the explicit VR little
// endian rules alone.
constexpr std::uint32_t Tag(std::uint16_t group, std::uint16_t element) {
  return std::uint32_t{group} << 16 | element;
}
using ElementValues = std::map<std::uint32_t, std::string>;

struct DirectoryFile {
  std::string bytes;
  ElementValues header;
  std::uint32_t sequenceLength = 0;
  std::uint32_t firstRecordOffset = 0;  // where the records begin, behind the header
  struct Record {
    std::uint32_t offset;  // in the file, of its (FFFE,E000)
    ElementValues values;
  };
  std::vector<Record> records;
};

DirectoryFile ReadDirectoryFile(const std::string& path);

// Bytes made independently of the encoder: a number little-endian, and one element in explicit
// VR little endian, with the long length form for OB and SQ.
std::string LittleEndian(std::uint32_t value, int size);
std::string Encoded(std::uint16_t group, std::uint16_t element, const std::string& code,
                    const std::string& value);
std::string BytesOf(const DicomEngine::BufferWriter& writer);
std::uint32_t ULOf(const std::string& value);

// The real file system, but the copy numbered failAt (from 0) gives error instead.
class ScriptedFileSystem final : public FileSystem {
 public:
  ScriptedFileSystem(int failAt, int error) : failAt_(failAt), error_(error) {}
  int MakeDirectory(const std::string& path) override { return Posix().MakeDirectory(path); }
  int CopyFileNoReplace(const std::string& source, const std::string& target) override {
    return copies_++ == failAt_ ? error_ : Posix().CopyFileNoReplace(source, target);
  }

 private:
  int copies_ = 0;
  int failAt_;
  int error_;
};

}  // namespace halvorine

#endif  // HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
