// The DICOMDIR of a disc read by dcmtk's dcmdump: every record must come back with no error, in
// the order of the walk, and every link must name the offset at which dcmdump found a record.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "DiscTestSupport.h"

namespace halvorine {
namespace {

using DiscBuilderDcmtkTest = ObjectsReleasedTest;

TEST_F(DiscBuilderDcmtkTest, ReadsEveryRecordAndEveryLink) {
  std::istringstream lines(ToolOutputOfADisc("dcmdump +L"));
  const std::regex record(R"(  \(fffe,e000\) na "Directory Record" ([A-Z]+) .*)");
  const std::regex offset(R"(  #  offset=\$([0-9]+))");
  const std::regex link(R"(\s*\(0004,(1200|1202|1400|1420)\) up ([0-9]+) .*)");
  std::string types;
  std::set<unsigned long> offsets = {0};
  std::vector<unsigned long> links;
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (std::regex_match(line, match, record)) types += match[1].str() + " ";
    if (std::regex_match(line, match, offset)) offsets.insert(std::stoul(match[1]));
    if (std::regex_match(line, match, link)) links.push_back(std::stoul(match[2]));
    // The implementation class UID holds a blank, as specified: dcmdump's one warning.
    if (line.rfind("W: ", 0) == 0) {
      EXPECT_EQ(line,
                "W: DcmUniqueIdentifier: Element ImplementationClassUID (0002,0012) contains one "
                "or more space characters, which were removed");
    }
    EXPECT_NE(line.rfind("E: ", 0), 0u) << line;
  }
  EXPECT_EQ(types, "PATIENT STUDY SERIES IMAGE IMAGE SERIES STUDY PATIENT STUDY SERIES IMAGE ");
  EXPECT_EQ(links.size(), 2 + 2 * 11u);
  for (unsigned long target : links) EXPECT_EQ(offsets.count(target), 1u) << target;
}

}  // namespace
}  // namespace halvorine
