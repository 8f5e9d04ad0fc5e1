// The registry file on disc. Readers take no lock: every change replaces the whole file by a
// rename, so a reader sees either the former file or the new one. Writers serialise on an
// exclusive flock of a lock file beside it ("<file>.lock", never removed), which the kernel
// releases when a writer dies.
#ifndef HALVORINE_PLATFORM_COM_REGISTRYFILE_H
#define HALVORINE_PLATFORM_COM_REGISTRYFILE_H

#include <halvorine/com.h>

#include <functional>
#include <string>

#include "platform/com/RegistryContent.h"

namespace halvorine {

class RegistryFile {
 public:
  // HALVORINE_REGISTRY when set and not empty, else $XDG_DATA_HOME/halvorine/registry.reg for an
  // absolute XDG_DATA_HOME, else $HOME/.local/share/halvorine/registry.reg; empty when HOME is
  // unset too.
  static std::string DefaultPath();

  explicit RegistryFile(std::string path) : path_(std::move(path)) {}

  const std::string& Path() const { return path_; }

  // A missing file gives an empty content. Failures: REGDB_E_READREGDB, and
  // HRESULT_FROM_WIN32(ERROR_BADDB) for a file that can't be parsed; *problem tells the cause.
  HRESULT Read(RegistryContent* content, std::string* problem) const;

  // Under the lock: reads the file, applies change, and renames a new file over it when the text
  // changed. The folders on the way are made. A failure of change is returned as it is, and
  // nothing is written then. Write failures give REGDB_E_WRITEREGDB.
  HRESULT Update(const std::function<HRESULT(RegistryContent&)>& change,
                 std::string* problem) const;

 private:
  HRESULT Replace(const std::string& text, std::string* problem) const;

  std::string path_;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_COM_REGISTRYFILE_H
