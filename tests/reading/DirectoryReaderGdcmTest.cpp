// The loaded tree against dcmdump's view of a disc that gdcm's gdcmgendir writes.
#include <gtest/gtest.h>

#include <string>

#include "DiscFixtures.h"
#include "RecordTree.h"
#include "TempFolder.h"

namespace halvorine {
namespace {

TEST(DirectoryReaderGdcmTest, DiscOfGdcmgendirMatchesDcmdump) {
  TempFolder disc;
  testing::MakeImages(disc.Path());
  testing::RunCommand("cd " + disc.Path() + " && gdcmgendir -r -i . -o DICOMDIR 2>&1");
  const std::string tree = testing::LoadTree(disc.Path());
  EXPECT_NE(tree.find("IMAGE file=" + disc.Path() + "/IMAGES/IM6 "), std::string::npos) << tree;
  EXPECT_EQ(tree, testing::DcmdumpTree(disc.Path()));
}

}  // namespace
}  // namespace halvorine
