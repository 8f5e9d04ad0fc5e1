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

// Plain decimal numbers: a month of January gives ".1.", never ".01.".
TEST(UtilitiesTest, GenerateUidIsTheRootAndTheUtcClock) {
  const SystemTime before = UtcNow();
  const std::string uid = GenerateUid();
  const SystemTime after = UtcNow();
  std::string pattern = "1\\.3\\.6\\.1\\.4\\.1\\.58217";
  for (int i = 0; i < 7; ++i) pattern += "\\.(0|[1-9][0-9]*)";
  std::smatch fields;
  ASSERT_TRUE(std::regex_match(uid, fields, std::regex(pattern))) << uid;
  const SystemTime stamp{std::stoi(fields[1]), std::stoi(fields[2]), std::stoi(fields[3]),
                         std::stoi(fields[4]), std::stoi(fields[5]), std::stoi(fields[6]),
                         std::stoi(fields[7])};
  EXPECT_LE(Ordered(before), Ordered(stamp)) << uid;
  EXPECT_LE(Ordered(stamp), Ordered(after)) << uid;
  EXPECT_LE(uid.size(), 41u);
}

// The calendar itself is OleDate's; here the forms of the texts both ways.
TEST(UtilitiesTest, OleDatesAndDicomTexts) {
  const std::pair<double, const char*> toDicom[] = {
      {kMarch9th2024 + 43530.7 / kDay, "20240309 120531"},
      {-1.25, "18991229 060000"},
      {-657434.0, "01000101 000000"},
      {0.0, "none"},
      {-0.0, "none"},
      {2958466.0, "none"},
      {std::nan(""), "none"}};
  for (const auto& [date, expected] : toDicom) {
    const std::optional<DicomDateTime> dicom = OleDateToDicom(date);
    EXPECT_EQ(dicom ? dicom->date + " " + dicom->time : "none", expected) << date;
  }
  const std::tuple<const char*, const char*, double> fromDicom[] = {
      {"20240309", nullptr, kMarch9th2024},
      {"20240309", "1205", kMarch9th2024},  // hours and minutes alone count as midnight
      {"20240309", "120530.123456", kMarch9th2024 + 43530 / kDay},
      {"202403091200", nullptr, kMarch9th2024},
      {"18991229", "060000", -1.25},
      {nullptr, "120530", 0.0},
      {"20241399", nullptr, 0.0},
      {"20240309", "240000", 0.0},  // a time that scans but is no time makes no date
  };
  for (const auto& [date, time, expected] : fromDicom) {
    EXPECT_DOUBLE_EQ(DicomToOleDate(date, time), expected)
        << (date ? date : "null") << ' ' << (time ? time : "null");
  }
}

// HexDigitValue is left to the dictionary's lines in DicomDictionaryTest.
TEST(UtilitiesTest, TrimSpacesRemovesBlanksOnly) {
  const std::pair<std::string, std::string> trims[] = {
      {"  ", ""},
      {" a b ", "a b"},
      {" \tIMAGE\t ", "\tIMAGE\t"},
      {std::string(" a\0 ", 4), std::string("a\0", 2)},
  };
  for (auto [text, expected] : trims) {
    TrimSpaces(text);
    EXPECT_EQ(text, expected);
  }
}

}  // namespace
}  // namespace halvorine
