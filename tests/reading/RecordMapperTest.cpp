#include "reading/RecordMapper.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "RaisedMessage.h"
#include "ReadingTestSupport.h"
#include "engine/elements/VRNumeric.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRUniqueIdentifier.h"
#include "platform/BString.h"
#include "service/ModuleLock.h"
#include "support/TextConversion.h"

namespace halvorine::testing {
namespace {

// An element of a record: "#" for the number 7 as UL, any other value a text.
struct Text {
  std::uint16_t group;
  std::uint16_t element;
  std::string value;
};

template <class Interface>
Interface* As(const MappedRecord& record) {
  return static_cast<Interface*>(record.object.get());
}

template <class Interface>
std::string Get(const MappedRecord& record, HRESULT (Interface::*getter)(BSTR*)) {
  BString text;
  (As<Interface>(record)->*getter)(text.Receive());
  return text.IsNull() ? "(null)" : ToNarrow(text.get());
}

class RecordMapperTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(ModuleLock::Count(), 0); }

  // A record of type, null for none, then the elements of texts in their order.
  MappedRecord Map(const char* type, std::vector<Text> texts = {}, ChildList children = {}) {
    DicomEngine::VRSequenceItem item("", 0xFFFE, 0xE000, 0);
    if (type != nullptr) texts.insert(texts.begin(), {0x0004, 0x1430, type});
    for (const auto& [group, element, value] : texts) {
      item.Append(value == "#" ? std::make_unique<DicomEngine::UnsignedIntegerVR>("UL", group,
                                                                                  element, 4, 7u)
                               : DicomEngine::MakeText("LO", group, element, value),
                  false);
    }
    return mapper_.MapRecord(RecordValues(PlainElementsOf(item), texts_), 400, children);
  }

  TextStore texts_;
  RecordMapper mapper_{kRecordCreators, u"/disc"};
};

// An empty type is there: it gives no object and no failure. A number in front hides the text.
TEST_F(RecordMapperTest, RecordTypesMatchTrimmedAndWithCase) {
  const std::pair<const char*, RecordLevel> cases[] = {
      {" STUDY  ", RecordLevel::kStudy}, {"study", RecordLevel::kOther}, {"", RecordLevel::kOther}};
  for (const auto& [type, level] : cases) {
    SCOPED_TRACE(type);
    const MappedRecord mapped = Map(type);
    EXPECT_EQ(mapped.level, level);
    EXPECT_EQ(mapped.object.get() == nullptr, level == RecordLevel::kOther);
  }
  for (const std::vector<Text>& texts :
       {std::vector<Text>{}, {{0x0004, 0x1430, "#"}, {0x0004, 0x1430, "STUDY"}}}) {
    EXPECT_TRUE(IsPlaced(RaisedMessage([&] { Map(nullptr, texts); }),
                         "The DICOMDIR record type is missing.", "DicomDirImpl"));
  }
}

// Texts keep their padding and a missing one is null; numbers go through atoi, the series' into
// a SHORT. The first element of a tag decides: a number hides a later text, as if it were
// missing, and a missing File ID gives the folder.
TEST_F(RecordMapperTest, FieldsComeFromTheFirstElementOfTheirTag) {
  const MappedRecord series = Map("SERIES", {{0x0008, 0x0060, "MR "}, {0x0020, 0x0011, "70000"}});
  const MappedRecord image =
      Map("IMAGE", {{0x0004, 0x1500, "#"}, {0x0004, 0x1500, "IM1"}, {0x0020, 0x0013, " 70000"}});
  const MappedRecord patient = Map("PATIENT", {{0x0010, 0x0010, "Doe^J "}});
  SHORT seriesNumber = 0;
  LONGLONG instanceNumber = 0;
  As<IDicomDirSeries>(series)->GetSeriesNumber(&seriesNumber);
  As<IDicomDirImage>(image)->GetInstanceNumber(&instanceNumber);
  EXPECT_EQ(seriesNumber, 4464);
  EXPECT_EQ(instanceNumber, 70000);
  EXPECT_EQ(Get(series, &IDicomDirSeries::GetModality), "MR ");
  EXPECT_EQ(Get(image, &IDicomDirImage::GetImageFilename), "/disc/");
  EXPECT_EQ(Get(patient, &IDicomDirPatient::GetDicomPatName), "Doe^J ");
  EXPECT_EQ(Get(patient, &IDicomDirPatient::GetPatientID), "(null)");
}

// A child's link to its parent is bare, with no reference.
TEST_F(RecordMapperTest, ParentsHoldTheOnlyReferenceAndChildrenPointBack) {
  ChildList children;
  children.push_back(Map("STUDY"));
  IUnknown* study = children[0].object.get();
  const MappedRecord patient = Map("PATIENT", {}, std::move(children));
  study->AddRef();
  EXPECT_EQ(study->Release(), 1u);
  IDicomDirPatient* back = nullptr;
  static_cast<IDicomDirStudy*>(study)->GetPatient(&back);
  EXPECT_EQ(back, As<IDicomDirPatient>(patient));
}

}  // namespace
}  // namespace halvorine::testing
