// Free helpers that several layers lean on: UIDs, the date forms, trimming, hex digits.
#ifndef HALVORINE_SUPPORT_UTILITIES_H
#define HALVORINE_SUPPORT_UTILITIES_H

#include <optional>
#include <string>

namespace halvorine {

// The root of every UID that the system makes.
inline constexpr char kUidRoot[] = "1.3.6.1.4.1.58217";

// The root and the UTC clock to the millisecond: "<root>.2024.3.9.12.0.0.500". The clock is the
// only source of uniqueness: two calls in one millisecond give the same UID.
std::string GenerateUid();

struct DicomDateTime {
  std::string date;  // YYYYMMDD
  std::string time;  // HHMMSS
};

// Nothing for the date 0.0 (no date) and for a number that is no date.
std::optional<DicomDateTime> OleDateToDicom(double oleDate);

// 0.0 unless the date text scans as "%4d%2d%2d" into a valid date. A null time, or one that
// doesn't scan as "%2d%2d%2d", counts as midnight; fractions of seconds are dropped.
double DicomToOleDate(const char* dateText, const char* timeText);

// Removes blanks (0x20), and only blanks, from both ends.
void TrimSpaces(std::string& text);

// 'a'-'f' and 'A'-'F' give 10 to 15; any other character its code minus that of '0'.
int HexDigitValue(char character);

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_UTILITIES_H
