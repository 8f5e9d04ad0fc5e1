#include "platform/ModulePath.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <utility>

namespace halvorine {
namespace {

TEST(ModulePathTest, PathsAreCutAndNormalisedByNameAlone) {
  const std::pair<const char*, const char*> normal[] = {
      {"/", "/"},
      {"/a/b", "/a/b"},
      {"/a/b/", "/a/b"},
      {"//a//./b/.", "/a/b"},
      {"/a/../b", "/b"},
      {"/a/b/../..", "/"},
      {"/../a", "/a"},
      {"/a/..b/c..", "/a/..b/c.."},
      {"/lib/./x/../y.so", "/lib/y.so"},
  };
  for (const auto& [path, expected] : normal) EXPECT_EQ(LexicallyNormal(path), expected) << path;

  const std::pair<const char*, const char*> parents[] = {
      {"/a/b/file", "/a/b"}, {"/file", "/"}, {"file", ""}, {"a/file", "a"}, {"/a/b/", "/a/b"}};
  for (const auto& [path, expected] : parents) EXPECT_EQ(ParentPath(path), expected) << path;
}

// This test's own code lies in its executable, which the loader knows by its absolute name.
TEST(ModulePathTest, TheLoaderNamesTheModuleOfAnAddress) {
  const std::string own = GetLoadedModulePath(reinterpret_cast<const void*>(&ParentPath));
  ASSERT_FALSE(own.empty());
  EXPECT_EQ(ParentPath(own) + kPathSeparator, GetModuleDirectory());
  EXPECT_EQ(GetLoadedModulePath(nullptr), "");
}

}  // namespace
}  // namespace halvorine
