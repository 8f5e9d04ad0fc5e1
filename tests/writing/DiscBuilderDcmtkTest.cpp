// The DICOMDIR of a disc read by dcmtk's dcmdump: no error, and every link naming the record
// that it should, by the offsets at which dcmdump found the records.
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "DiscTestSupport.h"

namespace halvorine {
namespace {

using DiscBuilderDcmtkTest = ServiceTest;

TEST_F(DiscBuilderDcmtkTest, EveryLinkNamesItsRecord) {
  std::istringstream lines(ToolOutputOfADisc("dcmdump +L"));
  const std::regex record(R"(  \(fffe,e000\) na "Directory Record" ([A-Z]+) .*)");
  const std::regex offset(R"(  #  offset=\$([0-9]+))");
  const std::regex link(R"(\s*\(0004,(1200|1202|1400|1420)\) up ([0-9]+) .*)");
  // The header's links, then each record's type, next and lower link; "@offset" for now.
  std::string table;
  std::vector<std::string> offsets;
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (std::regex_match(line, match, record)) table += "\n" + match[1].str();
    if (std::regex_match(line, match, offset)) offsets.push_back(match[1]);
    if (std::regex_match(line, match, link)) table += " @" + match[2].str();
    // The implementation class UID holds a blank: dcmdump's one warning.
    if (line.rfind("W: ", 0) == 0) {
      EXPECT_EQ(line,
                "W: DcmUniqueIdentifier: Element ImplementationClassUID (0002,0012) contains one "
                "or more space characters, which were removed");
    }
    EXPECT_NE(line.rfind("E: ", 0), 0u) << line;
  }
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    table = std::regex_replace(table, std::regex("@" + offsets[i] + "\\b"), std::to_string(i));
  }
  EXPECT_EQ(std::regex_replace(table, std::regex("@0\\b"), "-"),
            " 0 7\nPATIENT 7 1\nSTUDY 6 2\nSERIES 5 3\nIMAGE 4 -\nIMAGE - -\nSERIES - -\n"
            "STUDY - -\nPATIENT - 8\nSTUDY - 9\nSERIES - 10\nIMAGE - -");
}

}  // namespace
}  // namespace halvorine
