#ifndef HALVORINE_PLATFORM_APPENDFILE_H
#define HALVORINE_PLATFORM_APPENDFILE_H

#include <string>
#include <string_view>

namespace halvorine {

// A file that is only ever appended to: created when missing, never truncated, and each
// Append lands whole at the end, also when other processes append to the same file.
class AppendFile {
 public:
  AppendFile() = default;
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;
  ~AppendFile();

  // Gives false, and stays closed, when the file can't be opened or created.
  bool Open(const std::string& path);
  bool IsOpen() const { return fd_ >= 0; }
  // One write call; a failed or short write is not reported.
  void Append(std::string_view text);

 private:
  int fd_ = -1;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_APPENDFILE_H
