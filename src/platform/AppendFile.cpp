#include "platform/AppendFile.h"

#include <fcntl.h>
#include <unistd.h>

namespace halvorine {

bool AppendFile::Open(const std::string& path) {
  fd_.Reset(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
  return IsOpen();
}

void AppendFile::Append(std::string_view text) {
  if (!IsOpen()) return;
  // Tracing never disturbs the work: a failed or short write is dropped.
  [[maybe_unused]] const ssize_t written = write(fd_.get(), text.data(), text.size());
}

}  // namespace halvorine
