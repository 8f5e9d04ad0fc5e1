#include "support/Utilities.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <regex>
#include <string>
#include <tuple>
#include <utility>

#include "platform/Clock.h"

namespace halvorine {
namespace {

constexpr double kDay = 86400.0;
constexpr double kMarch9th2024 = 45360.0;

auto Ordered(const SystemTime& t) {
  return std::tie(t.year, t.month, t.day, t.hour, t.minute, t.second, t.milliseconds);
}

TEST(UtilitiesTest, GenerateUidIsTheRootAndTheUtcClock) {
  const SystemTime before = UtcNow();
  const std::string uid = GenerateUid();
  const SystemTime after = UtcNow();
  // Plain decimal numbers: a month of January gives ".1.", never ".01.".
  const std::string number = "(0|[1-9][0-9]*)";
  std::string pattern = "1\\.3\\.6\\.1\\.4\\.1\\.58217";
  for (int i = 0; i < 7; ++i) pattern += "\\." + number;
  std::smatch fields;
  ASSERT_TRUE(std::regex_match(uid, fields, std::regex(pattern))) << uid;
  const SystemTime stamp{std::stoi(fields[1]), std::stoi(fields[2]), std::stoi(fields[3]),
                         std::stoi(fields[4]), std::stoi(fields[5]), std::stoi(fields[6]),
                         std::stoi(fields[7])};
  EXPECT_LE(Ordered(before), Ordered(stamp)) << uid;
  EXPECT_LE(Ordered(stamp), Ordered(after)) << uid;
  EXPECT_LE(uid.size(), 41u);
}

// The calendar itself is OleDate's; here the forms of the texts, always both of them.
TEST(UtilitiesTest, OleDateToDicomFormsDateAndTime) {
  const struct {
    double date;
    const char* dicomDate;
    const char* dicomTime;
  } cases[] = {
      {kMarch9th2024, "20240309", "000000"},
      {kMarch9th2024 + 43530.7 / kDay, "20240309", "120531"},
      {-1.25, "18991229", "060000"},
      {-657434.0, "01000101", "000000"},
  };
  for (const auto& c : cases) {
    const std::optional<DicomDateTime> dicom = OleDateToDicom(c.date);
    ASSERT_TRUE(dicom.has_value()) << c.date;
    EXPECT_EQ(dicom->date, c.dicomDate) << c.date;
    EXPECT_EQ(dicom->time, c.dicomTime) << c.date;
  }
  for (const double date : {0.0, -0.0, 2958466.0, std::nan("")}) {
    EXPECT_FALSE(OleDateToDicom(date).has_value()) << date;
  }
}

TEST(UtilitiesTest, DicomToOleDate) {
  const struct {
    const char* date;
    const char* time;
    double expected;
  } cases[] = {
      {"20240309", nullptr, kMarch9th2024},
      {"20240309", "1205", kMarch9th2024},  // hours and minutes alone count as midnight
      {"20240309", "", kMarch9th2024},
      {"20240309", "12:05:30", kMarch9th2024},
      {"20240309", "120530.123456", kMarch9th2024 + 43530 / kDay},
      {"202403091200", nullptr, kMarch9th2024},
      {"18991229", "060000", -1.25},
      {"2024", "120530", 0.0},
      {nullptr, "120530", 0.0},
      {"", nullptr, 0.0},
      {"20241399", nullptr, 0.0},
      {"20240309", "240000", 0.0},  // a time that scans but is no time makes no date
  };
  for (const auto& c : cases) {
    EXPECT_DOUBLE_EQ(DicomToOleDate(c.date, c.time), c.expected)
        << (c.date ? c.date : "null") << ' ' << (c.time ? c.time : "null");
  }
}

TEST(UtilitiesTest, TrimSpacesRemovesBlanksOnly) {
  const struct {
    std::string text;
    std::string expected;
  } cases[] = {
      {"", ""},
      {"  ", ""},
      {"  PATIENT  ", "PATIENT"},
      {" a b ", "a b"},
      {" \tIMAGE\t ", "\tIMAGE\t"},
      {std::string(" a\0 ", 4), std::string("a\0", 2)},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    TrimSpaces(text);
    EXPECT_EQ(text, c.expected) << '"' << c.text << '"';
  }
}

// Anything that is no hex digit gives its distance from '0', without a failure.
TEST(UtilitiesTest, HexDigitValue) {
  const std::pair<char, int> cases[] = {{'0', 0},  {'9', 9},  {'a', 10}, {'f', 15},  {'A', 10},
                                        {'F', 15}, {'g', 55}, {'G', 23}, {' ', -16}, {'\0', -48}};
  for (const auto& [digit, value] : cases) EXPECT_EQ(HexDigitValue(digit), value) << digit;
}

}  // namespace
}  // namespace halvorine
