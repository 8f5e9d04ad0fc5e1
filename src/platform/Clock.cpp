#include "platform/Clock.h"

#include <sys/time.h>
#include <time.h>

namespace halvorine {
namespace {

SystemTime Now(struct tm* (*breakUp)(const time_t*, struct tm*)) {
  struct timespec now {};
  clock_gettime(CLOCK_REALTIME, &now);
  struct tm fields {};
  breakUp(&now.tv_sec, &fields);
  return SystemTime{fields.tm_year + 1900, fields.tm_mon + 1,   fields.tm_mday,
                    fields.tm_hour,        fields.tm_min,       fields.tm_sec,
                    static_cast<int>(now.tv_nsec / 1000000)};
}

}  // namespace

SystemTime UtcNow() { return Now(gmtime_r); }
SystemTime LocalNow() { return Now(localtime_r); }

}  // namespace halvorine
