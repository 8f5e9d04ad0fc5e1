#include "reading/ImagePathResolver.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace halvorine {
namespace {

// Trailing blanks go, leading ones stay; '/' separates as a backslash does.
TEST(ImagePathResolverTest, SplitsFileIdsAndRefusesThoseThatLeadOutside) {
  using Components = std::vector<std::string_view>;
  Components components = {"left", "over"};
  EXPECT_TRUE(ImagePathResolver::SplitFileId("DICOM\\PA0\\IM0  ", components));
  EXPECT_EQ(components, Components({"DICOM", "PA0", "IM0"}));
  EXPECT_TRUE(ImagePathResolver::SplitFileId(" A/B", components));
  EXPECT_EQ(components, Components({" A", "B"}));
  for (const char* fileId : {"..", "A\\.\\B", "\\etc\\passwd", "A\\\\B", "A\\", "   "}) {
    EXPECT_FALSE(ImagePathResolver::SplitFileId(fileId, components)) << fileId;
  }
}

// In this order, so that the folder of the last path changes between siblings and back.
TEST(ImagePathResolverTest, MatchesComponentsWithoutCaseOrVersionOnceListed) {
  TempFolder disc;
  disc.MakeFolder("dicom/pa0");
  disc.MakeFolder("dicom/Pa1");
  for (const char* name :
       {"dicom/pa0/im0;1", "dicom/pa0/IM1", "dicom/pa0/im1", "dicom/Im2", "dicom/Pa1/iM0"})
    WriteWholeFile(disc.Path(name), "");
  ImagePathResolver resolver(disc.Path());
  const struct {
    std::vector<std::string_view> components;
    std::string expected;
  } cases[] = {
      {{"DICOM", "PA0", "IM0"}, "dicom/pa0/im0;1"},
      {{"DICOM", "PA1", "IM0"}, "dicom/Pa1/iM0"},
      {{"DICOM", "PA0", "IM1"}, "dicom/pa0/IM1"},  // the exact name first
      {{"DICOM", "PA0", "iM1"}, "dicom/pa0/IM1"},  // then the first in byte order
      {{"DICOM", "IM2"}, "dicom/Im2"},
      {{"DICOM", "PA0", "IM9"}, "DICOM/PA0/IM9"},  // nothing answers: as formed
      {{"NOWHERE", "IM0"}, "NOWHERE/IM0"},
  };
  for (const auto& c : cases) EXPECT_EQ(resolver.Resolve(c.components), disc.Path(c.expected));
  // Each folder was listed once: a name that appears later isn't seen by this load.
  WriteWholeFile(disc.Path("dicom/pa0/IM9"), "");
  std::remove(disc.Path("dicom/pa0/IM1").c_str());
  EXPECT_EQ(resolver.Resolve({"DICOM", "PA0", "IM9"}), disc.Path("DICOM/PA0/IM9"));
  EXPECT_EQ(resolver.Resolve({"DICOM", "PA0", "IM1"}), disc.Path("dicom/pa0/IM1"));
}

}  // namespace
}  // namespace halvorine
