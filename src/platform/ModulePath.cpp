#include "platform/ModulePath.h"

#include <dlfcn.h>
#include <errno.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace halvorine {
namespace {

std::string CurrentDirectory() {
  std::vector<char> buffer(4096);
  while (getcwd(buffer.data(), buffer.size()) == nullptr) {
    if (errno != ERANGE) return {};
    buffer.resize(buffer.size() * 2);
  }
  return buffer.data();
}

}  // namespace

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

std::string LexicallyNormal(std::string_view absolute) {
  std::string normal;
  while (!absolute.empty()) {
    const std::size_t end = std::min(absolute.find(kPathSeparator), absolute.size());
    const std::string_view part = absolute.substr(0, end);
    absolute.remove_prefix(std::min(end + 1, absolute.size()));
    if (part == "..") {
      normal.resize(normal.empty() ? 0 : normal.rfind(kPathSeparator));
    } else if (!part.empty() && part != ".") {
      (normal += kPathSeparator) += part;
    }
  }
  return normal.empty() ? std::string(1, kPathSeparator) : normal;
}

std::string GetLoadedModulePath(const void* address) {
  Dl_info info{};
  if (dladdr(address, &info) == 0 || info.dli_fname == nullptr || *info.dli_fname == '\0') {
    return {};
  }
  if (*info.dli_fname == kPathSeparator) return LexicallyNormal(info.dli_fname);
  const std::string folder = CurrentDirectory();
  return folder.empty() ? folder : LexicallyNormal(folder + kPathSeparator + info.dli_fname);
}

}  // namespace halvorine
