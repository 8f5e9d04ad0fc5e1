// The process-wide trace log: one line per event,
//   ">>> 2024-03-09T07:05:03:042 --- <text>\r\n"
// in local time, written when the event's level is at most the configured one. Until the first
// Initialize that opens its file, every line is dropped. Nothing here ever fails its caller.
#ifndef HALVORINE_SUPPORT_TRACELOG_H
#define HALVORINE_SUPPORT_TRACELOG_H

#include <atomic>
#include <cstdint>
#include <limits>
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
  // Whether Trace would write a line of this level, answered without the lock, so that a caller
  // can skip building a text that would be dropped.
  bool IsEnabled(int level) const { return level <= enabledLevel_.load(std::memory_order_relaxed); }

 private:
  std::string ResolvePath();

  std::u16string fileName_;
  std::uint32_t level_ = 1;
  AppendFile file_;
  // level_ once the file is open; until then below every level, so that nothing is enabled.
  std::atomic<std::int64_t> enabledLevel_ = std::numeric_limits<std::int64_t>::min();
  std::mutex lock_;
};

// The one log of the process, made on first use and never destroyed.
TraceLog& GetTraceLog();

inline void Trace(std::string_view text, int level) { GetTraceLog().Trace(text, level); }

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_TRACELOG_H
