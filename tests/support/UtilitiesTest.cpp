#include "support/Utilities.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <regex>
#include <string>
#include <tuple>

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

TEST(UtilitiesTest, OleDateToDicomFormsDateAndTime) {
  const struct {
    double date;
    const char* dicomDate;
    const char* dicomTime;
  } cases[] = {
      {kMarch9th2024, "20240309", "000000"},
      {kMarch9th2024 + 43530 / kDay, "20240309", "120530"},
      {kMarch9th2024 + 43530.7 / kDay, "20240309", "120531"},
      {2.0, "19000101", "000000"},
      {-1.25, "18991229", "060000"},
      {-657434.0, "01000101", "000000"},
      {2958465.0 + 86399 / kDay, "99991231", "235959"},
  };
  for (const auto& c : cases) {
    const std::optional<DicomDateTime> dicom = OleDateToDicom(c.date);
    ASSERT_TRUE(dicom.has_value()) << c.date;
    EXPECT_EQ(dicom->date, c.dicomDate) << c.date;
    EXPECT_EQ(dicom->time, c.dicomTime) << c.date;
  }
}

TEST(UtilitiesTest, OleDateToDicomGivesNothingForNoDate) {
  for (const double date : {0.0, -0.0, 2958466.0, -657435.0, std::nan("")}) {
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
      {"20240309", "120530", kMarch9th2024 + 43530 / kDay},
      {"20240309", "120530.123456", kMarch9th2024 + 43530 / kDay},
      {"20240309", "235959", kMarch9th2024 + 86399 / kDay},
      {"202403091200", nullptr, kMarch9th2024},
      {"18991229", "060000", -1.25},
      {"18991230", nullptr, 0.0},
      {"00991231", nullptr, 0.0},
      {"01000101", nullptr, -657434.0},
      {"99991231", "235959", 2958465.0 + 86399 / kDay},
      {"2024", "120530", 0.0},
      {nullptr, "120530", 0.0},
      {"", nullptr, 0.0},
      {"20241399", nullptr, 0.0},
      {"20240230", nullptr, 0.0},
      {"20230229", nullptr, 0.0},
      {"20240309", "240000", 0.0},
      {"2024-03-09", nullptr, 0.0},
  };
  for (const auto& c : cases) {
    EXPECT_DOUBLE_EQ(DicomToOleDate(c.date, c.time), c.expected)
        << (c.date ? c.date : "null") << ' ' << (c.time ? c.time : "null");
  }
}

TEST(UtilitiesTest, DicomDatesRoundTrip) {
  for (double date = -657434.0; date <= 2958465.0; date += 997.0 + 3671 / kDay) {
    const std::optional<DicomDateTime> dicom = OleDateToDicom(date);
    ASSERT_TRUE(dicom.has_value()) << date;
    EXPECT_NEAR(DicomToOleDate(dicom->date.c_str(), dicom->time.c_str()), date, 0.5 / kDay) << date;
  }
}

TEST(UtilitiesTest, TrimSpacesRemovesBlanksOnly) {
  const struct {
    std::string text;
    std::string expected;
  } cases[] = {
      {"", ""},
      {"  ", ""},
      {"1.2.840.10008.1.2.1 ", "1.2.840.10008.1.2.1"},
      {"  PATIENT  ", "PATIENT"},
      {" a b ", "a b"},
      {"\tIMAGE\t", "\tIMAGE\t"},
      {" \tx\n ", "\tx\n"},
      {std::string(" a\0 ", 4), std::string("a\0", 2)},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    TrimSpaces(text);
    EXPECT_EQ(text, c.expected) << '"' << c.text << '"';
  }
}

TEST(UtilitiesTest, HexDigitValue) {
  const std::string digits = "0123456789";
  for (std::size_t i = 0; i < digits.size(); ++i) EXPECT_EQ(HexDigitValue(digits[i]), int(i));
  const std::string lower = "abcdef";
  const std::string upper = "ABCDEF";
  for (std::size_t i = 0; i < lower.size(); ++i) {
    EXPECT_EQ(HexDigitValue(lower[i]), int(i) + 10);
    EXPECT_EQ(HexDigitValue(upper[i]), int(i) + 10);
  }
  // Anything else is its distance from '0', without a failure.
  EXPECT_EQ(HexDigitValue('g'), 55);
  EXPECT_EQ(HexDigitValue('G'), 23);
  EXPECT_EQ(HexDigitValue(' '), -16);
  EXPECT_EQ(HexDigitValue('\0'), -48);
}

}  // namespace
}  // namespace halvorine
