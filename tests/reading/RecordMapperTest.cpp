#include "reading/RecordMapper.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "RaisedMessage.h"
#include "engine/elements/VRSequenceItem.h"
#include "engine/elements/VRString.h"
#include "service/DicomDirImage.h"
#include "service/DicomDirPatient.h"
#include "service/DicomDirSeries.h"
#include "service/DicomDirStudy.h"
#include "service/ModuleLock.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

using DicomEngine::VRSequenceItem;
using DicomEngine::VRString;

constexpr RecordCreators kCreators = {&CreateObject<DicomDirPatient>, &CreateObject<DicomDirStudy>,
                                      &CreateObject<DicomDirSeries>, &CreateObject<DicomDirImage>};

struct Text {
  std::uint16_t group;
  std::uint16_t element;
  std::string value;
};

std::unique_ptr<VRSequenceItem> Record(const std::vector<Text>& texts) {
  auto item = std::make_unique<VRSequenceItem>("", 0xFFFE, 0xE000, 0);
  for (const Text& t : texts) {
    item->Append(std::make_unique<VRString>("LO", t.group, t.element,
                                            static_cast<std::uint32_t>(t.value.size()), t.value),
                 false);
  }
  return item;
}

std::string Narrow(BSTR text) { return text == nullptr ? "(null)" : ToNarrow(text); }

class RecordMapperTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(ModuleLock::Count(), 0); }

  MappedRecord Map(const std::vector<Text>& texts, ChildList children = {}) {
    return mapper_.MapRecord(*Record(texts), 400, children);
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
    const MappedRecord mapped = Map({{0x0004, 0x1430, type}});
    EXPECT_EQ(mapped.level, level);
    EXPECT_EQ(mapped.object.get() == nullptr, level == RecordLevel::kOther);
  }
  EXPECT_TRUE(IsPlaced(RaisedMessage([&] { Map({}); }), "The DICOMDIR record type is missing.",
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
    const MappedRecord mapped =
        Map({{0x0004, 0x1430, "STUDY"}, {0x0008, 0x0020, c.date}, {0x0008, 0x0030, c.time}});
    DATE date = -1;
    static_cast<IDicomDirStudy*>(mapped.object.get())->GetStudyDate(&date);
    EXPECT_NEAR(date, c.expected, 1e-9);
  }
}

TEST_F(RecordMapperTest, NumbersGoThroughAtoiAndTextsKeepTheirPadding) {
  const struct {
    const char* value;
    bool present;
    SHORT series;
    LONGLONG instance;
  } cases[] = {
      {"12 ", true, 12, 12},        {" -5", true, -5, -5}, {"abc", true, 0, 0},
      {"70000", true, 4464, 70000}, {"", true, 0, 0},      {"", false, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    std::vector<Text> series = {{0x0004, 0x1430, "SERIES"}, {0x0008, 0x0060, "MR "}};
    std::vector<Text> image = {{0x0004, 0x1430, "IMAGE"}};
    if (c.present) {
      series.push_back({0x0020, 0x0011, c.value});
      image.push_back({0x0020, 0x0013, c.value});
    }
    SHORT seriesNumber = -1;
    LONGLONG instanceNumber = -1;
    const MappedRecord s = Map(series);
    static_cast<IDicomDirSeries*>(s.object.get())->GetSeriesNumber(&seriesNumber);
    static_cast<IDicomDirImage*>(Map(image).object.get())->GetInstanceNumber(&instanceNumber);
    EXPECT_EQ(seriesNumber, c.series);
    EXPECT_EQ(instanceNumber, c.instance);
    BString modality;
    static_cast<IDicomDirSeries*>(s.object.get())->GetModality(modality.Receive());
    EXPECT_EQ(Narrow(modality.get()), "MR ");
  }
}

TEST_F(RecordMapperTest, MissingTextsAndFileIdsGiveNullAndTheFolder) {
  const MappedRecord patient = Map({{0x0004, 0x1430, "PATIENT"}, {0x0010, 0x0010, "Doe^J "}});
  BString name;
  BString id;
  static_cast<IDicomDirPatient*>(patient.object.get())->GetDicomPatName(name.Receive());
  static_cast<IDicomDirPatient*>(patient.object.get())->GetPatientID(id.Receive());
  EXPECT_EQ(Narrow(name.get()), "Doe^J ");
  EXPECT_TRUE(id.IsNull());
  BString path;
  static_cast<IDicomDirImage*>(Map({{0x0004, 0x1430, "IMAGE"}}).object.get())
      ->GetImageFilename(path.Receive());
  EXPECT_EQ(Narrow(path.get()), "/disc/");
}

TEST_F(RecordMapperTest, ParentsHoldTheOnlyReferenceAndChildrenPointBack) {
  ChildList children;
  children.push_back(Map({{0x0004, 0x1430, "STUDY"}}));
  children.push_back(MappedRecord{});
  children.push_back(Map({{0x0004, 0x1430, "IMAGE"}}));  // wrong level: passed over
  IUnknown* study = children[0].object.get();
  MappedRecord patient = Map({{0x0004, 0x1430, "PATIENT"}}, std::move(children));
  auto* p = static_cast<IDicomDirPatient*>(patient.object.get());
  SafeArrayPtr studies;
  ASSERT_EQ(p->GetStudies(studies.Receive()), S_OK);
  LONG upper = -1;
  SafeArrayGetUBound(studies.get(), 1, &upper);
  EXPECT_EQ(upper, 1);  // the study and a null slot
  studies = SafeArrayPtr();
  study->AddRef();
  EXPECT_EQ(study->Release(), 1u);
  IDicomDirPatient* back = nullptr;
  static_cast<IDicomDirStudy*>(study)->GetPatient(&back);
  EXPECT_EQ(back, p);  // a bare link, with no reference
}

}  // namespace
}  // namespace halvorine
