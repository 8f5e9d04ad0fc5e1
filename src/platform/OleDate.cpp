#include "platform/OleDate.h"

#include <cmath>
#include <cstdint>

namespace halvorine {
namespace {

constexpr double kSecondsPerDay = 86400.0;
// A day before the epoch runs from its whole number down towards the next lower one: the times
// of 1 January 100 lie in (-657435, -657434].
constexpr double kFirstDay = -657434.0;  // 1 January 100
constexpr double kLastDay = 2958465.0;   // 31 December 9999

// Days between 1 March of year 0 (proleptic Gregorian) and the civil date, by eras of 400 years.
constexpr std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t yearOfEra = year - era * 400;
  const int shiftedMonth = month > 2 ? month - 3 : month + 9;
  const std::int64_t dayOfYear = (153 * shiftedMonth + 2) / 5 + day - 1;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra;
}

void CivilFromDays(std::int64_t days, SystemTime* fields) {
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const std::int64_t dayOfEra = days - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
  fields->day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
  fields->month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
  fields->year = static_cast<int>(yearOfEra + era * 400 + (fields->month <= 2 ? 1 : 0));
}

constexpr std::int64_t kEpoch = DaysFromCivil(1899, 12, 30);

bool IsLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

// As llround for a value that is never negative, without the math library that a process would
// load for it alone. Exact: a value below 2^52 less its whole part is.
std::int64_t RoundHalfUp(double value) {
  const auto whole = static_cast<std::int64_t>(value);
  return value - static_cast<double>(whole) >= 0.5 ? whole + 1 : whole;
}

}  // namespace

bool VariantTimeToSystemTime(double date, SystemTime* fields) {
  if (!(date > kFirstDay - 1.0 && date < kLastDay + 1.0)) return false;
  // The whole part counts days from the epoch either way; the fraction is always a time of day.
  const double whole = std::trunc(date);
  const double fraction = std::fabs(date - whole);
  std::int64_t days = static_cast<std::int64_t>(whole);
  std::int64_t seconds = RoundHalfUp(fraction * kSecondsPerDay);
  if (seconds >= static_cast<std::int64_t>(kSecondsPerDay)) {
    ++days;
    seconds = 0;
  }
  CivilFromDays(kEpoch + days, fields);
  if (fields->year > 9999) return false;  // the last second of 9999 rounded up
  fields->hour = static_cast<int>(seconds / 3600);
  fields->minute = static_cast<int>(seconds / 60 % 60);
  fields->second = static_cast<int>(seconds % 60);
  fields->milliseconds = 0;
  return true;
}

bool SystemTimeToVariantTime(const SystemTime& fields, double* date) {
  const bool calendar = fields.year >= 100 && fields.year <= 9999 && fields.month >= 1 &&
                        fields.month <= 12 && fields.day >= 1 &&
                        fields.day <= DaysInMonth(fields.year, fields.month);
  const bool clock = fields.hour >= 0 && fields.hour < 24 && fields.minute >= 0 &&
                     fields.minute < 60 && fields.second >= 0 && fields.second < 60;
  if (!calendar || !clock) return false;
  const auto days =
      static_cast<double>(DaysFromCivil(fields.year, fields.month, fields.day) - kEpoch);
  const double time = (fields.hour * 3600 + fields.minute * 60 + fields.second) / kSecondsPerDay;
  *date = days < 0 ? days - time : days + time;
  return true;
}

}  // namespace halvorine
