#include "reading/RecordMapper.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "RaisedMessage.h"
#include "ReadingTestSupport.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "service/ModuleLock.h"
#include "support/TextConversion.h"

namespace halvorine::testing {
namespace {

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

  // A record of type with the texts, all as LO.
  MappedRecord Map(const char* type, const std::vector<Text>& texts = {}, ChildList children = {}) {
    DicomEngine::VRSequenceItem item("", 0xFFFE, 0xE000, 0);
    std::vector<Text> all = texts;
    if (type != nullptr) all.insert(all.begin(), {0x0004, 0x1430, type});
    for (const Text& t : all) {
      item.Append(
          std::make_unique<DicomEngine::VRString>(
              "LO", t.group, t.element, static_cast<std::uint32_t>(t.value.size()), t.value),
          false);
    }
    return mapper_.MapRecord(RecordValues(item), 400, children);
  }

  RecordMapper mapper_{kCreators, u"/disc"};
};

TEST_F(RecordMapperTest, RecordTypesMatchTrimmedAndWithCase) {
  const std::pair<const char*, RecordLevel> cases[] = {
      {" STUDY  ", RecordLevel::kStudy}, {"IMAGE", RecordLevel::kImage},
      {"study", RecordLevel::kOther},    {"", RecordLevel::kOther},
      {"   ", RecordLevel::kOther},      {"PRIVATE", RecordLevel::kOther},
  };
  for (const auto& [type, level] : cases) {
    SCOPED_TRACE(type);
    const MappedRecord mapped = Map(type);
    EXPECT_EQ(mapped.level, level);
    EXPECT_EQ(mapped.object.get() == nullptr, level == RecordLevel::kOther);
  }
  EXPECT_TRUE(IsPlaced(RaisedMessage([&] { Map(nullptr); }), "The DICOMDIR record type is missing.",
                       "DicomDirImpl"));
}

TEST_F(RecordMapperTest, StudyDatesJoinDateAndTime) {
  const double kDay = 45360.0;  // 9 March 2024
  const struct {
    const char* date;
    const char* time;
    double expected;
  } cases[] = {
      {"20240309", "123000", kDay + 12.5 / 24},
      {"20240309", "1230", kDay},  // hours and minutes only: midnight
      {"20240309", "060000.123", kDay + 0.25},
      {"20240309", "", kDay},
      {"2024.03.09", "120000", 0.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.date) + " " + c.time);
    DATE date = -1;
    As<IDicomDirStudy>(Map("STUDY", {{0x0008, 0x0020, c.date}, {0x0008, 0x0030, c.time}}))
        ->GetStudyDate(&date);
    EXPECT_NEAR(date, c.expected, 1e-9);
  }
}

// Texts keep their padding; a missing one is null, a missing file ID gives the folder.
TEST_F(RecordMapperTest, NumbersGoThroughAtoiAndTextsKeepTheirPadding) {
  const struct {
    const char* value;  // null: not present
    SHORT series;
    LONGLONG instance;
  } cases[] = {
      {"12 ", 12, 12},        {" -5", -5, -5}, {"abc", 0, 0},
      {"70000", 4464, 70000}, {"", 0, 0},      {nullptr, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value == nullptr ? "(none)" : c.value);
    std::vector<Text> series = {{0x0008, 0x0060, "MR "}};
    std::vector<Text> image;
    if (c.value != nullptr) {
      series.push_back({0x0020, 0x0011, c.value});
      image.push_back({0x0020, 0x0013, c.value});
    }
    SHORT seriesNumber = -1;
    LONGLONG instanceNumber = -1;
    const MappedRecord s = Map("SERIES", series);
    const MappedRecord i = Map("IMAGE", image);
    As<IDicomDirSeries>(s)->GetSeriesNumber(&seriesNumber);
    As<IDicomDirImage>(i)->GetInstanceNumber(&instanceNumber);
    EXPECT_EQ(seriesNumber, c.series);
    EXPECT_EQ(instanceNumber, c.instance);
    EXPECT_EQ(Get(s, &IDicomDirSeries::GetModality), "MR ");
    EXPECT_EQ(Get(i, &IDicomDirImage::GetImageFilename), "/disc/");
  }
  const MappedRecord patient = Map("PATIENT", {{0x0010, 0x0010, "Doe^J "}});
  EXPECT_EQ(Get(patient, &IDicomDirPatient::GetDicomPatName), "Doe^J ");
  EXPECT_EQ(Get(patient, &IDicomDirPatient::GetPatientID), "(null)");
}

TEST_F(RecordMapperTest, ParentsHoldTheOnlyReferenceAndChildrenPointBack) {
  ChildList children;
  children.push_back(Map("STUDY"));
  children.push_back(MappedRecord{});
  children.push_back(Map("IMAGE"));  // wrong level: passed over
  IUnknown* study = children[0].object.get();
  const MappedRecord patient = Map("PATIENT", {}, std::move(children));
  SafeArrayPtr studies;
  ASSERT_EQ(As<IDicomDirPatient>(patient)->GetStudies(studies.Receive()), S_OK);
  LONG upper = -1;
  SafeArrayGetUBound(studies.get(), 1, &upper);
  EXPECT_EQ(upper, 1);  // the study and a null slot
  studies = SafeArrayPtr();
  study->AddRef();
  EXPECT_EQ(study->Release(), 1u);
  IDicomDirPatient* back = nullptr;
  static_cast<IDicomDirStudy*>(study)->GetPatient(&back);
  EXPECT_EQ(back, As<IDicomDirPatient>(patient));  // a bare link, with no reference
}

}  // namespace
}  // namespace halvorine::testing
