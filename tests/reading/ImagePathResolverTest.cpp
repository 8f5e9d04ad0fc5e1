#include "reading/ImagePathResolver.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace halvorine {
namespace {

TEST(ImagePathResolverTest, SplitsFileIdsAndRefusesThoseThatLeadOutside) {
  const struct {
    const char* fileId;
    std::vector<std::string_view> components;  // empty when refused
  } cases[] = {
      {"IM1", {"IM1"}},    {"DICOM\\PA0\\IM0  ", {"DICOM", "PA0", "IM0"}},
      {"A/B", {"A", "B"}}, {" A\\B", {" A", "B"}},
      {"..", {}},          {"A\\..\\..\\etc", {}},
      {"A\\.\\B", {}},     {"\\etc\\passwd", {}},
      {"/etc/passwd", {}}, {"A\\\\B", {}},
      {"A\\", {}},         {"   ", {}},
  };
  for (const auto& c : cases) {
    const auto components = ImagePathResolver::SplitFileId(c.fileId);
    EXPECT_EQ(components.has_value(), !c.components.empty()) << c.fileId;
    EXPECT_EQ(components.value_or(std::vector<std::string_view>{}), c.components) << c.fileId;
  }
}

TEST(ImagePathResolverTest, MatchesComponentsWithoutCaseOrVersionOnceListed) {
  TempFolder disc;
  disc.MakeFolder("dicom/pa0");
  for (const char* name : {"dicom/pa0/im0;1", "dicom/pa0/IM1", "dicom/pa0/im1", "dicom/Im2"})
    WriteWholeFile(disc.Path(name), "");
  ImagePathResolver resolver(disc.Path());
  const struct {
    std::vector<std::string_view> components;
    std::string expected;
  } cases[] = {
      {{"DICOM", "PA0", "IM0"}, "dicom/pa0/im0;1"},
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
