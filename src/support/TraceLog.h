// The process-wide trace log: one line per event,
//   ">>> 2024-03-09T07:05:03:042 --- <text>\r\n"
// in local time, written when the event's level is at most the configured one. Until the first
// Initialize that opens its file, every line is dropped. Nothing here ever fails its caller.
#ifndef HALVORINE_SUPPORT_TRACELOG_H
#define HALVORINE_SUPPORT_TRACELOG_H

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/AppendFile.h"

namespace halvorine {

class TraceLog {
 public:
  TraceLog() = default;
  TraceLog(const TraceLog&) = delete;
  TraceLog& operator=(const TraceLog&) = delete;

  // Opens the file once: when the log is open already, changes neither file nor level. An empty
  // name becomes "Trace.log"; a name without '/' goes into the "Log" folder beside the host's
  // executable, which is made on the way.
  void Initialize(const std::u16string& fileName, std::uint32_t level);
  void Trace(std::string_view text, int level);

 private:
  std::string ResolvePath();

  std::u16string fileName_;
  std::uint32_t level_ = 1;
  AppendFile file_;
  std::mutex lock_;
};

// The one log of the process, made on first use and never destroyed.
TraceLog& GetTraceLog();

inline void Trace(std::string_view text, int level) { GetTraceLog().Trace(text, level); }

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_TRACELOG_H
