#include "reading/DirectoryReader.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "RaisedMessage.h"
#include "ReadingTestSupport.h"
#include "TempFolder.h"
#include "service/ModuleLock.h"

namespace halvorine::testing {
namespace {

using Records = std::vector<VariantRecord>;

class DirectoryReaderTest : public ::testing::Test {
 protected:
  // Every object of a load, failed or not, is gone with its array.
  void TearDown() override { EXPECT_EQ(ModuleLock::Count(), 0); }

  std::string Load(const Records& records, const VariantLayout& layout = {}) {
    return LoadFile(MakeDicomDir(records, layout));
  }
  std::string LoadFile(const std::string& bytes) {
    WriteWholeFile(folder_.Path("DICOMDIR"), bytes);
    return LoadTree(folder_.Path());
  }

  TempFolder folder_;
};

TEST_F(DirectoryReaderTest, OtherTypesLeaveNullSlotsWrongLevelsGoAndRootZeroLeavesNoArray) {
  Records records = MakeTree(1, 1, 1, 1);  // patient, study, series, image
  records.push_back({"PRIVATE"});
  records.push_back({"SERIES", {{0x0008, 0x0060, "CS", "MR"}}});
  records[0].next = 4;
  records[1].next = 5;  // a series beside the study, straight below the patient
  const std::string tree = Load(records);
  EXPECT_EQ(tree.find("MR"), std::string::npos) << tree;
  EXPECT_EQ(tree.substr(tree.rfind('\n', tree.size() - 2) + 1), "-\n") << tree;
  EXPECT_NE(tree.find("  STUDY|"), std::string::npos) << tree;
  EXPECT_EQ(Load(records, {.rawRoot = 0}), "");
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

// Each failure ends the load naming the offset of the record at index at, if any, for "#".
TEST_F(DirectoryReaderTest, FailuresEndTheLoadNamingTheOffset) {
  const struct {
    std::function<void(Records&)> change;
    int at;
    std::string message;
  } cases[] = {
      {[](Records& r) { r[0].rawNext = 0x1FF; }, -1, "No DICOMDIR record begins at offset 511."},
      {[](Records& r) { r[3].lower = 1; }, 1,
       "The DICOMDIR record at offset # is linked in a cycle."},
      {[](Records& r) { r[3].nextForm = VariantRecord::Next::kEmpty; }, 3,
       "The offset attribute (0004,1400) at offset # holds no number."},
      {[](Records& r) { r[4].nextForm = VariantRecord::Next::kMissing; }, -1,
       "The first record offset is missing."},
      {[](Records& r) { r[3].attributes[0].value = "IMAGES\\..\\..\\etc"; }, 3,
       "The Referenced File ID \"IMAGES\\..\\..\\etc\" of the DICOMDIR record at offset # leads "
       "outside the folder."},
      // The walk visits the first record, then the 127 objects below it; the second record of
      // level 1 is the 129th.
      {[](Records& r) {  // 8 levels of 2, both linking to the same pair below
         r.clear();
         for (int first = 0; first < 16; first += 2) {
           r.push_back({"PRIVATE", {}, first + 1, first + 2 < 16 ? first + 2 : -1});
           r.push_back({"PRIVATE", {}, -1, first + 2 < 16 ? first + 2 : -1});
         }
       },
       3,
       "The DICOMDIR links reach the record at offset # once too often: more than 128 objects "
       "from 16 records."},
      {[](Records& r) {
         r.assign(70, {"PRIVATE"});
         for (int i = 0; i + 1 < 70; ++i) r[std::size_t(i)].lower = i + 1;
       },
       64, "The DICOMDIR record at offset # is nested deeper than 64 levels."},
  };
  for (const auto& c : cases) {
    Records records = MakeTree(2, 1, 1, 2);
    c.change(records);
    std::string expected = c.message;
    if (c.at >= 0)
      expected.replace(expected.find('#'), 1, std::to_string(RecordOffset(records, {}, c.at)));
    const std::string message = Load(records);
    EXPECT_TRUE(IsPlaced(message, "!" + expected, "DicomDirImpl")) << message;
  }
}

TEST_F(DirectoryReaderTest, AFileWithoutTheRecordSequenceFails) {
  std::string file = MakeDicomDir(MakeTree(1, 1, 1, 1), {});
  file[file.find(std::string("\x04\x00\x20\x12SQ", 6)) + 2] = '\x21';  // (0004,1221)
  const std::string message = LoadFile(file);
  EXPECT_TRUE(IsPlaced(message, "!The DICOMDIR sequence tag is missing.", "DicomDirImpl"))
      << message;
}

}  // namespace
}  // namespace halvorine::testing
