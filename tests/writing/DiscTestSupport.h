// What the writer's tests share: trees of record objects made through the class objects, as a
// host makes them, and bytes encoded independently of the engine.
#ifndef HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
#define HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H

#include <halvorine/dicomdir.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "engine/encoding/BufferWriter.h"
#include "platform/BString.h"
#include "platform/ComPtr.h"
#include "platform/SafeArrayPtr.h"

namespace halvorine {

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
class ObjectsReleasedTest : public ::testing::Test {
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

// What tool prints of the DICOMDIR of the disc P1 { S1 { E1 { I1 I2 } E2 { } } S2 { } }
// P2 { S1 { E1 { I1 } } }, made through the service as a host makes it.
std::string ToolOutputOfADisc(const std::string& tool);

// A number little-endian, and one element in explicit VR little endian, with the long length
// form for OB and SQ.
std::string LittleEndian(std::uint32_t value, int size);
std::string Encoded(std::uint16_t group, std::uint16_t element, const std::string& code,
                    const std::string& value);
std::string BytesOf(const DicomEngine::BufferWriter& writer);

}  // namespace halvorine

#endif  // HALVORINE_TESTS_WRITING_DISCTESTSUPPORT_H
