#include "platform/com/RegistryFile.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <utility>

#include "platform/FileDescriptor.h"
#include "platform/ModulePath.h"

namespace halvorine {
namespace {

constexpr mode_t kNewFileMode = 0644;

std::string Cause(const std::string& path, const char* what) {
  return "The registry file " + path + " can't be " + what + ": " + std::strerror(errno);
}

bool ReadAll(int fd, std::string* text) {
  char buffer[8192];
  for (;;) {
    const ssize_t got = read(fd, buffer, sizeof buffer);
    if (got == 0) return true;
    if (got < 0 && errno != EINTR) return false;
    if (got > 0) text->append(buffer, static_cast<std::size_t>(got));
  }
}

bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t put = write(fd, text.data(), text.size());
    if (put < 0 && errno != EINTR) return false;
    if (put > 0) text.remove_prefix(static_cast<std::size_t>(put));
  }
  return true;
}

bool LockExclusively(int fd) {
  while (flock(fd, LOCK_EX) != 0) {
    if (errno != EINTR) return false;
  }
  return true;
}

// The folder of path, made with its ancestors when missing.
bool MakeFolderOf(const std::string& path) {
  const std::string folder = ParentPath(path);
  if (folder.empty()) return true;
  for (std::size_t end = folder.find(kPathSeparator, 1);;
       end = folder.find(kPathSeparator, end + 1)) {
    if (mkdir(folder.substr(0, end).c_str(), 0777) != 0 && errno != EEXIST) return false;
    if (end == std::string::npos) break;
  }
  struct stat made {};
  if (stat(folder.c_str(), &made) != 0) return false;
  if (S_ISDIR(made.st_mode)) return true;
  errno = ENOTDIR;
  return false;
}

// Syncs the folder of path, so that a rename in it survives a crash of the machine.
void SyncFolderOf(const std::string& path) {
  const std::string folder = ParentPath(path);
  FileDescriptor fd(
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (fd.get() >= 0) fsync(fd.get());
}

}  // namespace

std::string RegistryFile::DefaultPath() {
  const char* named = getenv("HALVORINE_REGISTRY");
  if (named != nullptr && *named != '\0') return named;
  const char* data = getenv("XDG_DATA_HOME");
  if (data != nullptr && *data == '/') return std::string(data) + "/halvorine/registry.reg";
  const char* home = getenv("HOME");
  if (home != nullptr && *home != '\0') {
    return std::string(home) + "/.local/share/halvorine/registry.reg";
  }
  return {};
}

HRESULT RegistryFile::Read(RegistryContent* content, std::string* problem) const {
  *content = RegistryContent();
  if (path_.empty()) return S_OK;
  FileDescriptor fd(open(path_.c_str(), O_RDONLY | O_CLOEXEC));
  if (fd.get() < 0 && errno == ENOENT) return S_OK;
  std::string text;
  if (fd.get() < 0 || !ReadAll(fd.get(), &text)) {
    *problem = Cause(path_, "read");
    return REGDB_E_READREGDB;
  }
  std::string parseProblem;
  if (!content->Parse(text, &parseProblem)) {
    *problem = "The registry file " + path_ + " can't be parsed: " + parseProblem;
    return HRESULT_FROM_WIN32(ERROR_BADDB);
  }
  return S_OK;
}

HRESULT RegistryFile::Update(const std::function<HRESULT(RegistryContent&)>& change,
                             std::string* problem) const {
  if (path_.empty()) {
    *problem = "The registry has no place: HALVORINE_REGISTRY, XDG_DATA_HOME and HOME are unset";
    return REGDB_E_WRITEREGDB;
  }
  if (!MakeFolderOf(path_)) {
    *problem = Cause(path_, "made");
    return REGDB_E_WRITEREGDB;
  }
  const std::string lockPath = path_ + ".lock";
  FileDescriptor lock(open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  if (lock.get() < 0 || !LockExclusively(lock.get())) {
    *problem = Cause(path_, "locked");
    return REGDB_E_WRITEREGDB;
  }
  RegistryContent content;
  if (HRESULT hr = Read(&content, problem); FAILED(hr)) return hr;
  const std::string before = content.Serialize();
  if (HRESULT hr = change(content); FAILED(hr)) return hr;
  const std::string after = content.Serialize();
  return after == before ? S_OK : Replace(after, problem);
}

HRESULT RegistryFile::Replace(const std::string& text, std::string* problem) const {
  struct stat former {};
  const mode_t mode = stat(path_.c_str(), &former) == 0 ? former.st_mode & 07777 : kNewFileMode;
  std::string temporary = path_ + ".XXXXXX";
  FileDescriptor fd(mkostemp(temporary.data(), O_CLOEXEC));
  if (fd.get() < 0) {
    *problem = Cause(path_, "written");
    return REGDB_E_WRITEREGDB;
  }
  const bool written = fchmod(fd.get(), mode) == 0 && WriteAll(fd.get(), text) &&
                       fsync(fd.get()) == 0 && fd.Close() &&
                       rename(temporary.c_str(), path_.c_str()) == 0;
  if (!written) {
    *problem = Cause(path_, "written");
    unlink(temporary.c_str());
    return REGDB_E_WRITEREGDB;
  }
  SyncFolderOf(path_);
  return S_OK;
}

}  // namespace halvorine
