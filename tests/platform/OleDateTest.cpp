#include "platform/OleDate.h"

#include <gtest/gtest.h>
#include <time.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace halvorine {
namespace {

constexpr double kDay = 86400.0;
constexpr std::int64_t kUnixEpoch = 25569;   // 1 January 1970
constexpr std::int64_t kFirstDay = -657434;  // 1 January 100
constexpr std::int64_t kLastDay = 2958465;   // 31 December 9999

std::string Show(const SystemTime& t) {
  return std::to_string(t.year) + "-" + std::to_string(t.month) + "-" + std::to_string(t.day) +
         " " + std::to_string(t.hour) + ":" + std::to_string(t.minute) + ":" +
         std::to_string(t.second) + "." + std::to_string(t.milliseconds);
}

// Every day of the range, each at another time of day, against glibc's proleptic gmtime_r.
// Milliseconds are ignored on the way to the number and come back as 0.
TEST(OleDateTest, EveryDayRoundTripsAndAgreesWithGmtime) {
  for (std::int64_t day = kFirstDay; day <= kLastDay; ++day) {
    const std::int64_t second = (day * 7919 % 86400 + 86400) % 86400;
    const time_t moment = static_cast<time_t>((day - kUnixEpoch) * 86400 + second);
    struct tm broken {};
    ASSERT_NE(gmtime_r(&moment, &broken), nullptr);
    const SystemTime expected{broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday,
                              broken.tm_hour,        broken.tm_min,     broken.tm_sec};
    SystemTime withMilliseconds = expected;
    withMilliseconds.milliseconds = static_cast<int>(day % 1000 + 999) % 1000;
    double date = 0.0;
    ASSERT_TRUE(SystemTimeToVariantTime(withMilliseconds, &date)) << Show(expected);
    ASSERT_EQ(std::trunc(date), static_cast<double>(day)) << Show(expected);
    ASSERT_NEAR(std::fabs(date - std::trunc(date)) * kDay, static_cast<double>(second), 1e-3)
        << Show(expected);
    SystemTime fields;
    ASSERT_TRUE(VariantTimeToSystemTime(date, &fields)) << date;
    ASSERT_EQ(Show(fields), Show(expected)) << date;
  }
}

// Fractions of a second round to the nearest; before 30 December 1899 the fraction counts
// forwards from the day's start although the number is negative.
TEST(OleDateTest, NumbersRoundToTheNearestSecond) {
  const std::pair<double, const char*> cases[] = {
      {45360.0 + 43530.4 / kDay, "2024-3-9 12:5:30.0"},
      {45360.0 + 43530.6 / kDay, "2024-3-9 12:5:31.0"},
      {45360.0 + 86399.6 / kDay, "2024-3-10 0:0:0.0"},
      {-1.0 - 21600.7 / kDay, "1899-12-29 6:0:1.0"},
      {-1.0 - 86399.6 / kDay, "1899-12-30 0:0:0.0"},
      {-0.25, "1899-12-30 6:0:0.0"},  // the whole part is 0 either way
      {kFirstDay - 0.99999999, "100-1-2 0:0:0.0"},
  };
  for (const auto& [date, expected] : cases) {
    SystemTime fields;
    ASSERT_TRUE(VariantTimeToSystemTime(date, &fields)) << date;
    EXPECT_EQ(Show(fields), expected) << date;
  }
}

TEST(OleDateTest, RefusesNumbersAndFieldsOutsideTheirRange) {
  for (const double date :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), kFirstDay - 1.0, kFirstDay - 1.5, kLastDay + 1.0,
        kLastDay + 86399.6 / kDay,  // rounds into the year 10000
        1e300}) {
    SystemTime fields;
    EXPECT_FALSE(VariantTimeToSystemTime(date, &fields)) << date;
  }
  const SystemTime cases[] = {
      {2024, 13, 1},          {2024, 0, 1},     {2024, 1, 0},        {2024, 1, 32},
      {2023, 2, 29},          {2100, 2, 29},    {2024, 4, 31},       {99, 12, 31},
      {10000, 1, 1},          {0, 1, 1},        {2024, 1, 1, 24},    {2024, 1, 1, 0, 60},
      {2024, 1, 1, 0, 0, 60}, {2024, 1, 1, -1}, {2024, 1, 1, 0, -1},
  };
  for (const SystemTime& fields : cases) {
    double date = 7.0;
    EXPECT_FALSE(SystemTimeToVariantTime(fields, &date)) << Show(fields);
    EXPECT_EQ(date, 7.0) << Show(fields);
  }
}

}  // namespace
}  // namespace halvorine
