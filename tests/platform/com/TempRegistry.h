// A registry of classes of the test's own: HALVORINE_REGISTRY names a file in a temporary folder
// for as long as the object lives, and the former value comes back afterwards.
#ifndef HALVORINE_TESTS_PLATFORM_COM_TEMPREGISTRY_H
#define HALVORINE_TESTS_PLATFORM_COM_TEMPREGISTRY_H

#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "TempFolder.h"

namespace halvorine {

class TempRegistry {
 public:
  TempRegistry() {
    if (const char* former = getenv("HALVORINE_REGISTRY")) former_ = former;
    setenv("HALVORINE_REGISTRY", Path().c_str(), 1);
  }
  TempRegistry(const TempRegistry&) = delete;
  TempRegistry& operator=(const TempRegistry&) = delete;
  ~TempRegistry() {
    former_ ? setenv("HALVORINE_REGISTRY", former_->c_str(), 1) : unsetenv("HALVORINE_REGISTRY");
  }

  std::string Path() const { return folder_.Path("registry.reg"); }
  const TempFolder& Folder() const { return folder_; }
  bool Exists() const { return std::filesystem::exists(Path()); }
  void Write(std::string_view text) const { WriteWholeFile(Path(), text); }
  std::string Text() const { return ReadWholeFile(Path()); }

 private:
  TempFolder folder_;
  std::optional<std::string> former_;
};

// The header of every registry file.
inline constexpr char kRegistryHeader[] = "Windows Registry Editor Version 5.00\n\n";

}  // namespace halvorine

#endif  // HALVORINE_TESTS_PLATFORM_COM_TEMPREGISTRY_H
