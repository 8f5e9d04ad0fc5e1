#ifndef HALVORINE_PLATFORM_MODULEPATH_H
#define HALVORINE_PLATFORM_MODULEPATH_H

#include <string>

namespace halvorine {

// '/' separates the components of every file-system path that the system forms.
constexpr char kPathSeparator = '/';

// The folder of the host's executable (resolved /proc/self/exe) with its trailing '/', or an
// empty text when the link can't be read. The data files are looked for there.
std::string GetModuleDirectory();

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_MODULEPATH_H
