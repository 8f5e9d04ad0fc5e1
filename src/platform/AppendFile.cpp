#include "platform/AppendFile.h"

#include <fcntl.h>
#include <unistd.h>

namespace halvorine {

AppendFile::~AppendFile() {
  if (fd_ >= 0) close(fd_);
}

bool AppendFile::Open(const std::string& path) {
  fd_ = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  return fd_ >= 0;
}

void AppendFile::Append(std::string_view text) {
  if (fd_ < 0) return;
  // Tracing never disturbs the work: a failed or short write is dropped.
  [[maybe_unused]] const ssize_t written = write(fd_, text.data(), text.size());
}

}  // namespace halvorine
