#include "platform/FileSystem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <tuple>

#include "TempFolder.h"

namespace halvorine {
namespace {

mode_t ModeOf(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_mode : 0;
}

// The errors themselves are the system's; what matters is that they come back as they are.
TEST(FileSystemTest, MakeDirectoryUsesMode0777UnderTheUmaskAndGivesErrno) {
  TempFolder temp;
  const mode_t former = umask(027);
  EXPECT_EQ(FileSystem::Posix().MakeDirectory(temp.Path("new")), 0);
  umask(former);
  EXPECT_EQ(ModeOf(temp.Path("new")), S_IFDIR | 0750u);
  EXPECT_EQ(FileSystem::Posix().MakeDirectory(temp.Path("new")), EEXIST);
  EXPECT_EQ(FileSystem::Posix().MakeDirectory(temp.Path("missing/new")), ENOENT);
}

// Empty, below one read block, and across many blocks with an odd tail. A failed copy makes no
// target and never replaces one.
TEST(FileSystemTest, CopyIsByteIdenticalOrFailsWithErrno) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1000}, std::size_t{(5 << 20) + 123}}) {
    TempFolder temp;
    // Pseudo-random bytes, so that a block copied to the wrong place shows.
    std::string content(size, '\0');
    std::uint32_t state = 2463534242u;
    for (char& byte : content)
      byte = static_cast<char>((state = state * 1664525u + 1013904223u) >> 24);
    WriteWholeFile(temp.Path("source"), content);
    ASSERT_EQ(FileSystem::Posix().CopyFileNoReplace(temp.Path("source"), temp.Path("target")), 0);
    EXPECT_TRUE(ReadWholeFile(temp.Path("target")) == content) << size;
    EXPECT_TRUE(ReadWholeFile(temp.Path("source")) == content) << size;
  }
  TempFolder temp;
  WriteWholeFile(temp.Path("source"), "new content");
  WriteWholeFile(temp.Path("old"), "old");
  temp.MakeFolder("folder");
  const std::tuple<std::string, std::string, int> cases[] = {
      {temp.Path("source"), temp.Path("old"), EEXIST},
      {temp.Path("missing"), temp.Path("target"), ENOENT},
      {temp.Path("folder"), temp.Path("target"), EISDIR},
  };
  for (const auto& [source, target, error] : cases) {
    EXPECT_EQ(FileSystem::Posix().CopyFileNoReplace(source, target), error) << source;
  }
  EXPECT_EQ(ReadWholeFile(temp.Path("old")), "old");
  EXPECT_EQ(ModeOf(temp.Path("target")), 0u);
}

}  // namespace
}  // namespace halvorine
