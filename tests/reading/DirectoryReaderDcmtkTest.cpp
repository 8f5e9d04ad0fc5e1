// The loaded tree against dcmdump's view of the same file, record by record: discs that dcmtk's
// dcmmkdir writes, and the variants that no tool of Debian's writes.
#include <gtest/gtest.h>

#include "ReadingTestSupport.h"
#include "TempFolder.h"

namespace halvorine::testing {
namespace {

TEST(DirectoryReaderDcmtkTest, DiscOfDcmmkdirMatchesDcmdump) {
  const TempFolder disc;
  ExpectWrittenDiscMatchesDcmdump(disc.Path(), "dcmmkdir +r IMAGES");
}

TEST(DirectoryReaderDcmtkTest, VariantsMatchDcmdump) {
  std::vector<VariantRecord> records = MakeTree(2, 2, 2, 2);
  const int size = static_cast<int>(records.size());
  // P1, PRIVATE, UNKNOWNX, P2 (the record behind P1's 15).
  records[0].next = size;
  records.push_back({"PRIVATE", {{0x0009, 0x0010, "LO", "HALVORINE TEST"}}, size + 1});
  records.push_back({"UNKNOWNX", {}, 1 + 2 * (1 + 2 * (1 + 2))});
  std::vector<int> shuffled;
  for (int i = 0; i < size + 2; ++i) shuffled.push_back(i % 2 == 0 ? i : size + 2 - i);
  const std::pair<const char*, VariantLayout> cases[] = {
      {"implicit", {true, true, false}},
      {"no preamble", {false, false, false}},
      {"implicit without preamble", {true, false, false}},
      {"undefined lengths with icons", {false, true, true}},
      {"implicit, undefined, icons", {true, true, true}},
      {"out of chain order", {false, true, false, shuffled}},
  };
  for (const auto& [name, layout] : cases) {
    SCOPED_TRACE(name);
    std::vector<VariantRecord> variant = records;
    for (VariantRecord& record : variant) record.iconImage = layout.undefinedItems;
    const TempFolder disc;
    WriteWholeFile(disc.Path("DICOMDIR"), MakeDicomDir(variant, layout));
    const std::string tree = LoadTree(disc.Path());
    EXPECT_NE(tree.find("\n-\n-\nPATIENT"), std::string::npos) << tree;
    EXPECT_EQ(tree, DcmdumpTree(disc.Path()));
  }
}

}  // namespace
}  // namespace halvorine::testing
