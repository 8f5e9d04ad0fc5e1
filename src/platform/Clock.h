#ifndef HALVORINE_PLATFORM_CLOCK_H
#define HALVORINE_PLATFORM_CLOCK_H

namespace halvorine {

// A moment broken into calendar fields, as the Windows SYSTEMTIME carries it.
struct SystemTime {
  int year = 0;
  int month = 0;  // 1 to 12
  int day = 0;    // 1 to 31
  int hour = 0;
  int minute = 0;
  int second = 0;
  int milliseconds = 0;
};

SystemTime UtcNow();
SystemTime LocalNow();

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_CLOCK_H
