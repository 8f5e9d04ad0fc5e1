#include "platform/FileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "platform/FileDescriptor.h"

namespace halvorine {
namespace {

// Plain reads and writes, for file systems where the kernel's copy paths don't apply.
int CopyByReading(int from, int to) {
  char block[1 << 16];
  for (;;) {
    const ssize_t got = read(from, block, sizeof block);
    if (got == 0) return 0;
    if (got < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    for (ssize_t done = 0; done < got;) {
      const ssize_t put = write(to, block + done, static_cast<std::size_t>(got - done));
      if (put < 0 && errno != EINTR) return errno;
      if (put > 0) done += put;
    }
  }
}

// copy_file_range, which shares blocks itself where the file system can, else reads and writes.
// A regular file is copied up to the size that it had when opened, with no call to find its end;
// for anything else, size is negative and the copy runs until the source has no more.
int CopyContent(int from, int to, off_t size) {
  for (off_t done = 0; size < 0 || done < size;) {
    const auto wanted = static_cast<std::size_t>(size < 0 ? 1 << 30 : size - done);
    const ssize_t copied = copy_file_range(from, nullptr, to, nullptr, wanted, 0);
    if (copied == 0) return 0;
    if (copied > 0) {
      done += copied;
      continue;
    }
    if (errno == EINTR) continue;
    if (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP) {
      return CopyByReading(from, to);
    }
    return errno;
  }
  return 0;
}

class PosixFileSystem final : public FileSystem {
 public:
  int MakeDirectory(const std::string& path) override {
    return mkdir(path.c_str(), 0777) == 0 ? 0 : errno;
  }

  int CopyFileNoReplace(const std::string& source, const std::string& target) override {
    FileDescriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (from.get() < 0) return errno;
    struct stat info {};
    if (fstat(from.get(), &info) != 0) return errno;
    if (S_ISDIR(info.st_mode)) return EISDIR;
    const mode_t mode = info.st_mode & 0777;
    FileDescriptor to(open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (to.get() < 0) return errno;
    const int error = CopyContent(from.get(), to.get(), S_ISREG(info.st_mode) ? info.st_size : -1);
    if (error != 0) unlink(target.c_str());
    return error;
  }
};

}  // namespace

FileSystem& FileSystem::Posix() {
  static PosixFileSystem posix;
  return posix;
}

}  // namespace halvorine
