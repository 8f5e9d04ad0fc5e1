#include "reading/DirectoryReader.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "DicomDirVariants.h"
#include "RaisedMessage.h"
#include "RecordTree.h"
#include "TempFolder.h"
#include "platform/SafeArrayPtr.h"
#include "service/DicomDirImage.h"
#include "service/DicomDirPatient.h"
#include "service/DicomDirSeries.h"
#include "service/DicomDirStudy.h"
#include "service/ModuleLock.h"
#include "support/TextConversion.h"

namespace halvorine {
namespace {

using testing::LoadedTree;
using testing::MakeDicomDir;
using testing::MakeTree;
using testing::RecordOffset;
using testing::VariantLayout;
using testing::VariantRecord;

constexpr RecordCreators kCreators = {&CreateObject<DicomDirPatient>, &CreateObject<DicomDirStudy>,
                                      &CreateObject<DicomDirSeries>, &CreateObject<DicomDirImage>};

class DirectoryReaderTest : public ::testing::Test {
 protected:
  // Every object of a load, failed or not, is gone with its array.
  void TearDown() override { EXPECT_EQ(ModuleLock::Count(), 0); }

  void Read(const std::vector<VariantRecord>& records, const VariantLayout& layout,
            SafeArrayPtr* patients) {
    WriteWholeFile(folder_.Path("DICOMDIR"), MakeDicomDir(records, layout));
    RecordOffsetIndex index;
    DirectoryReader(index, kCreators, ToWide(folder_.Path()))
        .ReadDirectory(folder_.Path("DICOMDIR"), patients->Receive());
  }

  std::string Tree(const std::vector<VariantRecord>& records, const VariantLayout& layout) {
    SafeArrayPtr patients;
    const std::string message = RaisedMessage([&] { Read(records, layout, &patients); });
    EXPECT_EQ(message, "nothing raised");
    return LoadedTree(patients.get());
  }

  std::string Failure(const std::vector<VariantRecord>& records, const VariantLayout& layout) {
    SafeArrayPtr patients;
    const std::string message = RaisedMessage([&] { Read(records, layout, &patients); });
    EXPECT_EQ(patients.get(), nullptr) << "a failed load handed out a tree";
    return message;
  }

  TempFolder folder_;
};

TEST_F(DirectoryReaderTest, RootOfZeroLeavesTheArrayAsItWas) {
  VariantLayout layout;
  layout.root = -1;
  EXPECT_EQ(Tree(MakeTree(1, 1, 1, 1), layout), "");
}

TEST_F(DirectoryReaderTest, OtherTypesLeaveNullSlotsAndWrongLevelsArePassedOver) {
  std::vector<VariantRecord> records = MakeTree(1, 1, 1, 1);  // patient, study, series, image
  records.emplace_back("PRIVATE");
  records.emplace_back("SERIES",
                       std::vector<testing::VariantAttribute>{{0x0008, 0x0060, "CS", "MR"}});
  records[0].next = 4;
  records[1].next = 5;  // a series beside the study, straight below the patient
  const std::string tree = Tree(records, {});
  EXPECT_EQ(tree.find("MR"), std::string::npos) << tree;
  EXPECT_EQ(tree.substr(tree.rfind('\n', tree.size() - 2) + 1), "-\n") << tree;
  EXPECT_NE(tree.find("  STUDY"), std::string::npos) << tree;
}

TEST_F(DirectoryReaderTest, RecordsLinkedFromTwoPlacesGiveObjectsToEach) {
  std::vector<VariantRecord> records = MakeTree(2, 1, 1, 1);
  records[4].lower = records[0].lower;  // the second patient shares the first one's study
  const std::string tree = Tree(records, {});
  const std::size_t first = tree.find("  STUDY date=");
  ASSERT_NE(first, std::string::npos) << tree;
  const std::string study = tree.substr(first, tree.find('\n', first) - first);
  EXPECT_NE(tree.rfind(study), first) << tree;
  EXPECT_EQ(tree.find("P2S1A"), std::string::npos) << tree;
}

struct FailureCase {
  const char* name;
  std::function<void(std::vector<VariantRecord>&, VariantLayout&)> change;
  // The message proper, given the offsets of the records.
  std::function<std::string(const std::function<std::uint32_t(int)>&)> message;
};

class DirectoryReaderFailures : public DirectoryReaderTest,
                                public ::testing::WithParamInterface<FailureCase> {};

TEST_P(DirectoryReaderFailures, EndTheLoadNamingTheOffset) {
  std::vector<VariantRecord> records = MakeTree(2, 1, 1, 2);
  VariantLayout layout;
  GetParam().change(records, layout);
  const auto offset = [&](int index) { return RecordOffset(records, layout, index); };
  const std::string message = Failure(records, layout);
  EXPECT_TRUE(IsPlaced(message, GetParam().message(offset), "DicomDirImpl")) << message;
}

// The record at which a walk of records, children first, makes its limit + 1st visit.
int VisitBeyond(const std::vector<VariantRecord>& records, int start, int& visits, int limit) {
  for (int at = start; at >= 0; at = records[static_cast<std::size_t>(at)].next) {
    if (++visits > limit) return at;
    const int beyond =
        VisitBeyond(records, records[static_cast<std::size_t>(at)].lower, visits, limit);
    if (beyond >= 0) return beyond;
  }
  return -1;
}

// depth levels of two records each, both linking down to the same pair below.
std::vector<VariantRecord> SharedLevels(int depth) {
  std::vector<VariantRecord> records;
  for (int level = 0; level < depth; ++level) {
    const int first = static_cast<int>(records.size());
    const int lower = level + 1 < depth ? first + 2 : -1;
    records.emplace_back("PRIVATE", std::vector<testing::VariantAttribute>{}, first + 1, lower);
    records.emplace_back("PRIVATE", std::vector<testing::VariantAttribute>{}, -1, lower);
  }
  return records;
}

INSTANTIATE_TEST_SUITE_P(
    Links, DirectoryReaderFailures,
    ::testing::Values(
        FailureCase{
            "RootToNoRecord", [](auto&, auto& layout) { layout.rawRoot = 0x7000; },
            [](auto&) { return std::string("No DICOMDIR record begins at offset 28672."); }},
        FailureCase{"NextIntoARecord", [](auto& records, auto&) { records[0].rawNext = 0x1FF; },
                    [](auto&) { return std::string("No DICOMDIR record begins at offset 511."); }},
        FailureCase{"NextToItself", [](auto& records, auto&) { records[0].next = 0; },
                    [](auto& offset) {
                      return "The DICOMDIR record at offset " + std::to_string(offset(0)) +
                             " is linked in a cycle.";
                    }},
        FailureCase{"LowerToAnAncestor", [](auto& records, auto&) { records[3].lower = 1; },
                    [](auto& offset) {
                      return "The DICOMDIR record at offset " + std::to_string(offset(1)) +
                             " is linked in a cycle.";
                    }},
        FailureCase{"NextWithNoNumber",
                    [](auto& records, auto&) { records[3].nextForm = VariantRecord::Form::kEmpty; },
                    [](auto& offset) {
                      return "The offset attribute (0004,1400) at offset " +
                             std::to_string(offset(3)) + " holds no number.";
                    }},
        FailureCase{
            "NextMissingAtTheEndOfItsChain",
            [](auto& records, auto&) { records[4].nextForm = VariantRecord::Form::kMissing; },
            [](auto&) { return std::string("The first record offset is missing."); }},
        FailureCase{
            "FileIdLeadingOutside",
            [](auto& records, auto&) { records[3].attributes[0].value = "IMAGES\\..\\..\\etc"; },
            [](auto& offset) {
              return "The Referenced File ID \"IMAGES\\..\\..\\etc\" of the DICOMDIR "
                     "record at offset " +
                     std::to_string(offset(3)) + " leads outside the folder.";
            }},
        FailureCase{"SharedChainsExpanding",
                    [](auto& records, auto&) { records = SharedLevels(8); },
                    [](auto& offset) {
                      int visits = 0;
                      const int beyond = VisitBeyond(SharedLevels(8), 0, visits, 128);
                      return "The DICOMDIR links reach the record at offset " +
                             std::to_string(offset(beyond)) +
                             " once too often: more than 128 objects from 16 records.";
                    }},
        FailureCase{"NestedTooDeep",
                    [](auto& records, auto&) {
                      records.assign(70, VariantRecord("PRIVATE"));
                      for (int i = 0; i + 1 < 70; ++i)
                        records[static_cast<std::size_t>(i)].lower = i + 1;
                    },
                    [](auto& offset) {
                      return "The DICOMDIR record at offset " + std::to_string(offset(64)) +
                             " is nested deeper than 64 levels.";
                    }}),
    [](const ::testing::TestParamInfo<FailureCase>& param) {
      return std::string(param.param.name);
    });

}  // namespace
}  // namespace halvorine
