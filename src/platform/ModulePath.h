#ifndef HALVORINE_PLATFORM_MODULEPATH_H
#define HALVORINE_PLATFORM_MODULEPATH_H

#include <string>
#include <string_view>

namespace halvorine {

// '/' separates the components of every file-system path that the system forms.
constexpr char kPathSeparator = '/';

// The folder of the host's executable (resolved /proc/self/exe) with its trailing '/', or an
// empty text when the link can't be read. The data files are looked for there.
std::string GetModuleDirectory();

// The absolute path under which the module holding address was loaded, symbolic links kept and
// "." and ".." taken away by name, so that a registration follows the name that leads to the file
// after an upgrade. Empty when the loader doesn't know the address.
std::string GetLoadedModulePath(const void* address);

// An absolute path with no empty, "." or ".." component; ".." at the root stays there, as the
// system takes it.
std::string LexicallyNormal(std::string_view absolute);

// The path without its last component: the folder of a file, "/" for a file at the root and empty
// for a bare name.
inline std::string ParentPath(const std::string& path) {
  const std::size_t slash = path.rfind(kPathSeparator);
  if (slash == std::string::npos) return {};
  return path.substr(0, slash == 0 ? 1 : slash);
}

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_MODULEPATH_H
