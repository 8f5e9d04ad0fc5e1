// The loaded tree against dcmdump's view of the same file, record by record: discs that dcmtk's
// dcmmkdir writes, and the variants that no tool of Debian's writes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DicomDirVariants.h"
#include "DiscFixtures.h"
#include "RecordTree.h"
#include "TempFolder.h"

namespace halvorine {
namespace {

using testing::DcmdumpTree;
using testing::LoadTree;
using testing::VariantLayout;
using testing::VariantRecord;

TEST(DirectoryReaderDcmtkTest, DiscOfDcmmkdirMatchesDcmdump) {
  TempFolder disc;
  testing::MakeImages(disc.Path());
  testing::RunCommand("cd " + disc.Path() + " && dcmmkdir +r IMAGES 2>&1");
  const std::string tree = LoadTree(disc.Path());
  EXPECT_NE(tree.find("IMAGE file=" + disc.Path() + "/IMAGES/IM6 "), std::string::npos) << tree;
  EXPECT_EQ(tree, DcmdumpTree(disc.Path()));
}

TEST(DirectoryReaderDcmtkTest, VariantsMatchDcmdump) {
  std::vector<VariantRecord> records = testing::MakeTree(2, 2, 2, 2);
  records.emplace_back(
      "PRIVATE", std::vector<testing::VariantAttribute>{{0x0009, 0x0010, "LO", "HALVORINE TEST"}});
  records.emplace_back("UNKNOWNX");
  records[0].next = static_cast<int>(records.size()) - 2;  // P1, PRIVATE, UNKNOWNX, P2
  records.end()[-2].next = static_cast<int>(records.size()) - 1;
  records.back().next = 0 + 1 + 2 * (1 + 2 * (1 + 2));  // the second patient
  std::vector<int> shuffled;
  for (int i = 0; i < static_cast<int>(records.size()); ++i) {
    shuffled.push_back(i % 2 == 0 ? i : static_cast<int>(records.size()) - i);
  }
  struct Case {
    const char* name;
    VariantLayout layout;
    bool icons;
  };
  const Case cases[] = {
      {"implicit", {true, true, false, {}}, false},
      {"no preamble", {false, false, false, {}}, false},
      {"implicit without preamble", {true, false, false, {}}, false},
      {"undefined lengths with icons", {false, true, true, {}}, true},
      {"implicit, undefined, icons", {true, true, true, {}}, true},
      {"out of chain order", {false, true, false, shuffled}, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<VariantRecord> variant = records;
    for (VariantRecord& record : variant) record.iconImage = c.icons;
    TempFolder disc;
    WriteWholeFile(disc.Path("DICOMDIR"), testing::MakeDicomDir(variant, c.layout));
    const std::string tree = LoadTree(disc.Path());
    EXPECT_NE(tree.find("\n-\n-\nPATIENT"), std::string::npos) << tree;
    EXPECT_EQ(tree, DcmdumpTree(disc.Path()));
  }
}

}  // namespace
}  // namespace halvorine
