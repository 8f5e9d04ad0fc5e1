// OLE dates: days since 30 December 1899 as a double, the time of day being the fraction. A date
// before that day has a negative whole part and a positive fraction: -1.25 is 29 December 1899,
// 06:00. Windows' range is kept: 1 January 100 to 31 December 9999.
#ifndef HALVORINE_PLATFORM_OLEDATE_H
#define HALVORINE_PLATFORM_OLEDATE_H

#include "platform/Clock.h"

namespace halvorine {

// Breaks a date into fields, to the nearest second; milliseconds come out 0. Gives false for a
// number outside the range, NaN and infinities included.
bool VariantTimeToSystemTime(double date, SystemTime* fields);

// Joins fields into a date, ignoring milliseconds. Gives false unless every field lies in its
// calendar range (the day in its month, the year from 100 to 9999).
bool SystemTimeToVariantTime(const SystemTime& fields, double* date);

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_OLEDATE_H
