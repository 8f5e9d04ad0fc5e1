#ifndef HALVORINE_PLATFORM_APPENDFILE_H
#define HALVORINE_PLATFORM_APPENDFILE_H

#include <string>
#include <string_view>

#include "platform/FileDescriptor.h"

namespace halvorine {

// A file that is only ever appended to: created when missing, never truncated, and each
// Append lands whole at the end, also when other processes append to the same file.
class AppendFile {
 public:
  AppendFile() = default;

  // Gives false, and stays closed, when the file can't be opened or created.
  bool Open(const std::string& path);
  bool IsOpen() const { return fd_.get() >= 0; }
  // One write call; a failed or short write is not reported.
  void Append(std::string_view text);

 private:
  FileDescriptor fd_;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_APPENDFILE_H
