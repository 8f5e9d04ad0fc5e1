#include "reading/DirectoryReader.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "ReadingTestSupport.h"
#include "TempFolder.h"
#include "platform/SafeArrayPtr.h"
#include "service/ModuleLock.h"
#include "support/TextConversion.h"

namespace halvorine::testing {
namespace {

using Records = std::vector<VariantRecord>;

class DirectoryReaderTest : public ::testing::Test {
 protected:
  // Every object of a load, failed or not, is gone with its array.
  void TearDown() override { EXPECT_EQ(ModuleLock::Count(), 0); }

  // The loaded tree, or the failure's text with "!" in front; a failed load hands out no tree.
  std::string Load(const Records& records, const VariantLayout& layout = {}) {
    WriteWholeFile(folder_.Path("DICOMDIR"), MakeDicomDir(records, layout));
    SafeArrayPtr patients;
    const std::string message = RaisedMessage([&] {
      RecordOffsetIndex index;
      DirectoryReader(index, kCreators, ToWide(folder_.Path()))
          .ReadDirectory(folder_.Path("DICOMDIR"), patients.Receive());
    });
    if (message == "nothing raised") return LoadedTree(patients.get());
    EXPECT_EQ(patients.get(), nullptr) << "a failed load handed out a tree";
    return "!" + message;
  }

  TempFolder folder_;
};

TEST_F(DirectoryReaderTest, RootOfZeroLeavesTheArrayAsItWas) {
  EXPECT_EQ(Load(MakeTree(1, 1, 1, 1), {.rawRoot = 0}), "");
}

TEST_F(DirectoryReaderTest, OtherTypesLeaveNullSlotsAndWrongLevelsArePassedOver) {
  Records records = MakeTree(1, 1, 1, 1);  // patient, study, series, image
  records.push_back({"PRIVATE"});
  records.push_back({"SERIES", {{0x0008, 0x0060, "CS", "MR"}}});
  records[0].next = 4;
  records[1].next = 5;  // a series beside the study, straight below the patient
  const std::string tree = Load(records);
  EXPECT_EQ(tree.find("MR"), std::string::npos) << tree;
  EXPECT_EQ(tree.substr(tree.rfind('\n', tree.size() - 2) + 1), "-\n") << tree;
  EXPECT_NE(tree.find("  STUDY|"), std::string::npos) << tree;
}

TEST_F(DirectoryReaderTest, RecordsLinkedFromTwoPlacesGiveObjectsToEach) {
  Records records = MakeTree(2, 1, 1, 1);
  records[4].lower = records[0].lower;  // the second patient shares the first one's study
  const std::string tree = Load(records);
  const std::size_t first = tree.find("  STUDY|");
  ASSERT_NE(first, std::string::npos) << tree;
  EXPECT_NE(tree.rfind(tree.substr(first, tree.find('\n', first) - first)), first) << tree;
  EXPECT_EQ(tree.find("P2S1A"), std::string::npos) << tree;
}

// depth levels of two records each, both linking down to the same pair below.
Records SharedLevels(int depth) {
  Records records;
  for (int level = 0; level < depth; ++level) {
    const int first = static_cast<int>(records.size());
    const int lower = level + 1 < depth ? first + 2 : -1;
    records.push_back({"PRIVATE", {}, first + 1, lower});
    records.push_back({"PRIVATE", {}, -1, lower});
  }
  return records;
}

// Each failure ends the load naming the offset of the record at index at, if any, for "#".
TEST_F(DirectoryReaderTest, FailuresEndTheLoadNamingTheOffset) {
  const struct {
    std::function<void(Records&, VariantLayout&)> change;
    int at;
    std::string message;
  } cases[] = {
      {[](Records&, VariantLayout& l) { l.rawRoot = 0x7000; }, -1,
       "No DICOMDIR record begins at offset 28672."},
      {[](Records& r, VariantLayout&) { r[0].rawNext = 0x1FF; }, -1,
       "No DICOMDIR record begins at offset 511."},
      {[](Records& r, VariantLayout&) { r[0].next = 0; }, 0,
       "The DICOMDIR record at offset # is linked in a cycle."},
      {[](Records& r, VariantLayout&) { r[3].lower = 1; }, 1,
       "The DICOMDIR record at offset # is linked in a cycle."},
      {[](Records& r, VariantLayout&) { r[3].nextForm = VariantRecord::Next::kEmpty; }, 3,
       "The offset attribute (0004,1400) at offset # holds no number."},
      {[](Records& r, VariantLayout&) { r[4].nextForm = VariantRecord::Next::kMissing; }, -1,
       "The first record offset is missing."},
      {[](Records& r, VariantLayout&) { r[3].attributes[0].value = "IMAGES\\..\\..\\etc"; }, 3,
       "The Referenced File ID \"IMAGES\\..\\..\\etc\" of the DICOMDIR record at offset # leads "
       "outside the folder."},
      // The walk visits the first record, then the 127 objects below it; the second record of
      // level 1 is the 129th.
      {[](Records& r, VariantLayout&) { r = SharedLevels(8); }, 3,
       "The DICOMDIR links reach the record at offset # once too often: more than 128 objects "
       "from 16 records."},
      {[](Records& r, VariantLayout&) {
         r.assign(70, {"PRIVATE"});
         for (int i = 0; i + 1 < 70; ++i) r[std::size_t(i)].lower = i + 1;
       },
       64, "The DICOMDIR record at offset # is nested deeper than 64 levels."},
  };
  for (const auto& c : cases) {
    Records records = MakeTree(2, 1, 1, 2);
    VariantLayout layout;
    c.change(records, layout);
    std::string expected = c.message;
    if (c.at >= 0) {
      expected.replace(expected.find('#'), 1, std::to_string(RecordOffset(records, layout, c.at)));
    }
    const std::string message = Load(records, layout);
    EXPECT_TRUE(IsPlaced(message, "!" + expected, "DicomDirImpl")) << message;
  }
}

}  // namespace
}  // namespace halvorine::testing
