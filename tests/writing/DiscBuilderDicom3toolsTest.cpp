// The DICOMDIR of a disc checked by dicom3tools' dciodvfy. Each finding that it may report stands
// below with the property of these files that causes it; any other finding fails the test.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "DiscTestSupport.h"

namespace halvorine {
namespace {

const std::vector<std::regex> kKnownFindings = {
    // The meta information version is the bytes 02 00.
    std::regex(R"(Warning - Bad FileMetaInformationVersion Attribute - wrong VR, length or not )"
               R"(0x00,0x01)"),
    // The Referenced File ID is written as UI, not as the standard's CS.
    std::regex(R"(\(0x0004,0x1500\) CS Referenced File ID  - Warning - Explicit value )"
               R"(representation doesn't match data dictionary; Explicit <UI> Dictionary <CS>)"),
    std::regex(R"(Error - Illegal root for UID - "(DICOM|PA|ST|SE|IM)[0-9]*" in \(0x0004,0x1500\) )"
               R"(Referenced File ID)"),
    std::regex(
        R"(Error - Value invalid for this VR - \(0x0004,0x1500\) CS Referenced File ID  )"
        R"(UI \[[1-5]\] = <[A-Z0-9]+> - Character invalid for this VR = '[A-Z]' \(0x[0-9a-f]+\))"),
    // The implementation class UID is the text "KORVANEL PACS".
    std::regex(R"(Error - Illegal root for UID - "KORVANEL PACS" in \(0x0002,0x0012\) )"
               R"(Implementation Class UID)"),
    std::regex(R"(Error - Value invalid for this VR - \(0x0002,0x0012\) UI Implementation Class )"
               R"(UID  UI \[1\] = <KORVANEL PACS> - Character invalid for this VR = '[A-Z ]' )"
               R"(\(0x[0-9a-f]+\))"),
    std::regex(R"(Error - Dicom dataset contains invalid data values for Value Representations)"),
    // The header keeps the group length of group 0004.
    std::regex(R"(Warning - Retired attribute - \(0x0004,0x0000\) UL Group Length )"),
    std::regex(R"(Warning - Dicom dataset contains retired attributes)"),
    // PATIENT records carry the sex, STUDY records the institution.
    std::regex(R"(Warning - Attribute is not present in standard DICOM IOD - \(0x0010,0x0040\) )"
               R"(CS Patient's Sex )"),
    std::regex(R"(Warning - Attribute is not present in standard DICOM IOD - \(0x0008,0x0080\) )"
               R"(LO Institution Name )"),
    std::regex(R"(Warning - Dicom dataset contains attributes not present in standard DICOM IOD )"
               R"(- this is a Standard Extended SOP Class)"),
};

using DiscBuilderDicom3toolsTest = ServiceTest;

TEST_F(DiscBuilderDicom3toolsTest, NoFindingBeyondTheKnownOnes) {
  std::istringstream lines(ToolOutputOfADisc("dciodvfy"));
  bool recognised = false;
  for (std::string line; std::getline(lines, line);) {
    recognised = recognised || line == "BasicDirectory";
    EXPECT_TRUE(
        line == "BasicDirectory" ||
        std::any_of(kKnownFindings.begin(), kKnownFindings.end(),
                    [&](const std::regex& finding) { return std::regex_match(line, finding); }))
        << "new finding: " << line;
  }
  EXPECT_TRUE(recognised) << "dciodvfy didn't read the file as a Basic Directory";
}

}  // namespace
}  // namespace halvorine
