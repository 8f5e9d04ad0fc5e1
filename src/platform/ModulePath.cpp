#include "platform/ModulePath.h"

#include <unistd.h>

#include <vector>

namespace halvorine {

std::string GetModuleDirectory() {
  std::vector<char> buffer(4096);
  const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
  if (length <= 0 || static_cast<std::size_t>(length) >= buffer.size()) return {};
  std::string path(buffer.data(), static_cast<std::size_t>(length));
  const std::size_t slash = path.rfind(kPathSeparator);
  if (slash == std::string::npos) return {};
  path.resize(slash + 1);
  return path;
}

}  // namespace halvorine
