// Test helpers for file-system cases: a folder of one test's own, and whole-file reads and writes.
#ifndef HALVORINE_TESTS_SUPPORT_TEMPFOLDER_H
#define HALVORINE_TESTS_SUPPORT_TEMPFOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace halvorine {

// Made by mkdtemp under $TMPDIR (or /tmp); removed with everything in it when the test ends.
class TempFolder {
 public:
  TempFolder() {
    const char* base = getenv("TMPDIR");
    path_ =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/halvorine-test-XXXXXX";
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  // Without a trailing '/'.
  const std::string& Path() const { return path_; }
  std::string Path(std::string_view name) const { return path_ + "/" + std::string(name); }

  std::string MakeFolder(std::string_view name) const {
    std::filesystem::create_directories(Path(name));
    return Path(name);
  }

 private:
  std::string path_;
};

inline void WriteWholeFile(const std::string& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!file) throw std::runtime_error("can't write " + path);
}

inline std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("can't read " + path);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

}  // namespace halvorine

#endif  // HALVORINE_TESTS_SUPPORT_TEMPFOLDER_H
