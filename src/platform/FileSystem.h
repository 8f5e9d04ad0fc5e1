// The folder and copy calls of the writer, behind an interface so that tests can stand in a full
// disc or a failing copy. Results are 0 for success or the errno of the failing call, which is
// what the system reports where Windows would give GetLastError.
#ifndef HALVORINE_PLATFORM_FILESYSTEM_H
#define HALVORINE_PLATFORM_FILESYSTEM_H

#include <string>

namespace halvorine {

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // One level, mode 0777 under the umask; the parent must exist. EEXIST when anything stands there.
  virtual int MakeDirectory(const std::string& path) = 0;

  // Copies byte for byte and never replaces: the target is created exclusively (EEXIST when it
  // stands already). A copy that fails half-way removes the partial target.
  virtual int CopyFileNoReplace(const std::string& source, const std::string& target) = 0;

  // The real file system of this process, through POSIX and the kernel's copy paths.
  static FileSystem& Posix();
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_FILESYSTEM_H
