// Owns one POSIX file descriptor, which may be -1; it is closed with its owner.
#ifndef HALVORINE_PLATFORM_FILEDESCRIPTOR_H
#define HALVORINE_PLATFORM_FILEDESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace halvorine {

class FileDescriptor {
 public:
  explicit FileDescriptor(int fd = -1) : fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { Reset(-1); }

  int get() const { return fd_; }
  void Reset(int fd) {
    if (fd_ >= 0) close(fd_);
    fd_ = fd;
  }
  // Closes now, so that a failing close can be seen.
  bool Close() { return close(std::exchange(fd_, -1)) == 0; }

 private:
  int fd_;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_FILEDESCRIPTOR_H
