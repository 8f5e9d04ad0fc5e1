#include "support/TraceLog.h"

#include <cstdio>

#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/ModulePath.h"
#include "support/ComponentStatic.h"
#include "support/MyException.h"
#include "support/TextConversion.h"

namespace halvorine {

void TraceLog::Initialize(const std::u16string& fileName, std::uint32_t level) {
  try {
    {
      std::lock_guard<std::mutex> guard(lock_);
      if (file_.IsOpen()) return;
      level_ = level;
      fileName_ = fileName.empty() ? u"Trace.log" : fileName;
      if (file_.Open(ResolvePath())) enabledLevel_.store(level_, std::memory_order_relaxed);
    }
    Trace(FormatBounded(128, "The unmanaged trace level is: %d", static_cast<int>(level_)), 1);
  } catch (...) {
    // Tracing must never disturb the work.
  }
}

std::string TraceLog::ResolvePath() {
  std::string path = ToNarrow(fileName_);
  if (path.find(kPathSeparator) != std::string::npos) return path;
  const std::string hostFolder = GetModuleDirectory();
  if (hostFolder.empty()) return path;
  const std::string logFolder = hostFolder + "Log";
  FileSystem::Posix().MakeDirectory(logFolder);
  return logFolder + kPathSeparator + path;
}

void TraceLog::Trace(std::string_view text, int level) {
  try {
    std::lock_guard<std::mutex> guard(lock_);
    if (level > static_cast<std::int64_t>(level_) || !file_.IsOpen()) return;
    const SystemTime now = LocalNow();
    const std::string stamp =
        FormatBounded(32, "%04d-%02d-%02dT%02d:%02d:%02d:%03d", now.year, now.month, now.day,
                      now.hour, now.minute, now.second, now.milliseconds);
    std::string line;
    line.reserve(text.size() + 40);
    line.append(">>> ").append(stamp).append(" --- ").append(text).append("\r\n");
    file_.Append(line);
  } catch (...) {
    // Tracing must never disturb the work.
  }
}

TraceLog& GetTraceLog() { return ComponentStatic<TraceLog>(); }

}  // namespace halvorine
