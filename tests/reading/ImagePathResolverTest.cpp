#include "reading/ImagePathResolver.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace halvorine {
namespace {

TEST(ImagePathResolverTest, SplitsFileIdsAndRefusesThoseThatLeadOutside) {
  struct Case {
    const char* fileId;
    std::vector<std::string_view> components;  // empty when refused
  };
  const Case cases[] = {
      {"IM1", {"IM1"}},    {"DICOM\\PA0\\IM0  ", {"DICOM", "PA0", "IM0"}},
      {"A/B", {"A", "B"}}, {" A\\B", {" A", "B"}},
      {"..", {}},          {"A\\..\\..\\etc", {}},
      {"A\\.\\B", {}},     {"\\etc\\passwd", {}},
      {"/etc/passwd", {}}, {"A\\\\B", {}},
      {"A\\", {}},         {"   ", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fileId);
    const auto components = ImagePathResolver::SplitFileId(c.fileId);
    if (c.components.empty()) {
      EXPECT_FALSE(components.has_value());
    } else {
      ASSERT_TRUE(components.has_value());
      EXPECT_EQ(*components, c.components);
    }
  }
}

TEST(ImagePathResolverTest, MatchesComponentsWithoutCaseOrVersionOnceListed) {
  TempFolder disc;
  disc.MakeFolder("dicom/pa0");
  for (const char* name : {"dicom/pa0/im0;1", "dicom/pa0/IM1", "dicom/pa0/im1", "dicom/Im2"}) {
    WriteWholeFile(disc.Path(name), "");
  }
  ImagePathResolver resolver(disc.Path());
  struct Case {
    std::vector<std::string_view> components;
    std::string expected;
  };
  const Case cases[] = {
      {{"DICOM", "PA0", "IM0"}, "dicom/pa0/im0;1"},
      {{"DICOM", "PA0", "IM1"}, "dicom/pa0/IM1"},  // the exact name first
      {{"DICOM", "PA0", "iM1"}, "dicom/pa0/IM1"},  // then the first in byte order
      {{"DICOM", "IM2"}, "dicom/Im2"},
      {{"DICOM", "PA0", "IM9"}, "DICOM/PA0/IM9"},  // nothing answers: as formed
      {{"NOWHERE", "IM0"}, "NOWHERE/IM0"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    EXPECT_EQ(resolver.Resolve(c.components), disc.Path(c.expected));
  }
  // Each folder was listed once: a name that appears later isn't seen by this load.
  WriteWholeFile(disc.Path("dicom/pa0/IM9"), "");
  std::remove(disc.Path("dicom/pa0/IM1").c_str());
  EXPECT_EQ(resolver.Resolve({"DICOM", "PA0", "IM9"}), disc.Path("DICOM/PA0/IM9"));
  EXPECT_EQ(resolver.Resolve({"DICOM", "PA0", "IM1"}), disc.Path("dicom/pa0/IM1"));
}

}  // namespace
}  // namespace halvorine
