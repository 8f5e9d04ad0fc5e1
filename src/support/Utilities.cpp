#include "support/Utilities.h"

#include <cstdio>

#include "platform/Clock.h"
#include "platform/OleDate.h"
#include "support/MyException.h"

namespace halvorine {

std::string GenerateUid() {
  const SystemTime now = UtcNow();
  return kUidRoot + FormatBounded(64, ".%d.%d.%d.%d.%d.%d.%d", now.year, now.month, now.day,
                                  now.hour, now.minute, now.second, now.milliseconds);
}

std::optional<DicomDateTime> OleDateToDicom(double oleDate) {
  SystemTime fields;
  if (oleDate == 0.0 || !VariantTimeToSystemTime(oleDate, &fields)) return std::nullopt;
  return DicomDateTime{
      FormatBounded(10, "%04d%02d%02d", fields.year, fields.month, fields.day),
      FormatBounded(10, "%02d%02d%02d", fields.hour, fields.minute, fields.second)};
}

double DicomToOleDate(const char* dateText, const char* timeText) {
  SystemTime fields;
  if (dateText == nullptr ||
      std::sscanf(dateText, "%4d%2d%2d", &fields.year, &fields.month, &fields.day) != 3) {
    return 0.0;
  }
  if (timeText == nullptr ||
      std::sscanf(timeText, "%2d%2d%2d", &fields.hour, &fields.minute, &fields.second) != 3) {
    fields.hour = fields.minute = fields.second = 0;
  }
  double date = 0.0;
  return SystemTimeToVariantTime(fields, &date) ? date : 0.0;
}

void TrimSpaces(std::string& text) {
  text.erase(text.find_last_not_of(' ') + 1);
  text.erase(0, text.find_first_not_of(' '));
}

int HexDigitValue(char character) {
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return character - '0';
}

}  // namespace halvorine
