#include "platform/com/RegistryFile.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace halvorine {
namespace {

TEST(RegistryFile, ItsPlaceFollowsTheEnvironment) {
  const char* const names[] = {"HALVORINE_REGISTRY", "XDG_DATA_HOME", "HOME"};
  // The three variables in the order of names, null for unset, and the path.
  const char* const places[][4] = {
      {"/r/classes.reg", "/d", "/h", "/r/classes.reg"},
      {"", "/d", "/h", "/d/halvorine/registry.reg"},
      {nullptr, "/d", "/h", "/d/halvorine/registry.reg"},
      {nullptr, "relative", "/h", "/h/.local/share/halvorine/registry.reg"},
      {nullptr, nullptr, "/h", "/h/.local/share/halvorine/registry.reg"},
      {nullptr, nullptr, nullptr, ""},
  };
  std::vector<std::string> former;
  for (const char* name : names) former.push_back(getenv(name) ? getenv(name) : "");
  for (const auto& place : places) {
    for (int i = 0; i < 3; ++i) place[i] ? setenv(names[i], place[i], 1) : unsetenv(names[i]);
    EXPECT_EQ(RegistryFile::DefaultPath(), place[3]);
  }
  for (int i = 0; i < 3; ++i) setenv(names[i], former[i].c_str(), 1);
}

class RegistryFileTest : public testing::Test {
 protected:
  // Sets key's default value, as one update.
  HRESULT Set(const std::string& key) const {
    std::string problem;
    return file_.Update(
        [&](RegistryContent& content) { return content.SetValue(key, "", "x"), S_OK; }, &problem);
  }

  TempFolder folder_;
  RegistryFile file_{folder_.Path("made/on/the/way/registry.reg")};
};

TEST_F(RegistryFileTest, AMissingFileIsEmptyAndAChangeThatChangesNothingWritesNothing) {
  RegistryContent content;
  std::string problem;
  EXPECT_EQ(file_.Read(&content, &problem), S_OK);
  EXPECT_EQ(file_.Update([](RegistryContent&) { return S_OK; }, &problem), S_OK);
  EXPECT_FALSE(std::filesystem::exists(file_.Path()));
  ASSERT_EQ(Set("A"), S_OK);
  EXPECT_EQ(ReadWholeFile(file_.Path()),
            "Windows Registry Editor Version 5.00\n\n[HKEY_CLASSES_ROOT\\A]\n@=\"x\"\n\n");
  RegistryFile folderAsFile(folder_.Path());
  EXPECT_EQ(folderAsFile.Read(&content, &problem), REGDB_E_READREGDB);
  EXPECT_EQ(problem, "The registry file " + folder_.Path() + " can't be read: Is a directory");

  // A file where a folder of the path belongs, at its end or on the way.
  WriteWholeFile(folder_.Path("plain"), "");
  for (const std::string& path :
       {folder_.Path("plain/registry.reg"), folder_.Path("plain/below/registry.reg")}) {
    const RegistryFile blocked(path);
    EXPECT_EQ(blocked.Update([](RegistryContent&) { return S_OK; }, &problem), REGDB_E_WRITEREGDB);
    EXPECT_EQ(problem, "The registry file " + path + " can't be made: Not a directory");
  }
}

// Each process sets keys of its own, one update each: an update that overlapped another without
// the lock would lose the other's key. The last process dies while it holds the lock: its change
// never lands, and the kernel's release of its lock lets the others in.
TEST_F(RegistryFileTest, ConcurrentUpdatesLoseNothingAndADyingWriterLeavesNoTrace) {
  const auto key = [](int process, int update) {
    return "P" + std::to_string(process) + "\\" + std::to_string(update);
  };
  constexpr int kDying = 4;
  std::vector<pid_t> children;
  for (int process = 0; process <= kDying; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0 && process == kDying) {
      std::string problem;
      file_.Update(
          [](RegistryContent& content) {
            content.SetValue("Dead", "", "never written");
            _exit(3);
            return S_OK;
          },
          &problem);
      _exit(0);
    }
    if (child == 0) {
      bool good = true;
      for (int update = 0; update < 40; ++update) good &= Set(key(process, update)) == S_OK;
      _exit(good ? 0 : 1);
    }
    children.push_back(child);
  }
  for (std::size_t i = 0; i < children.size(); ++i) {
    int status = 0;
    ASSERT_EQ(waitpid(children[i], &status, 0), children[i]);
    EXPECT_TRUE(WIFEXITED(status)) << i;
    EXPECT_EQ(WEXITSTATUS(status), i == kDying ? 3 : 0) << i;
  }
  RegistryContent content;
  std::string problem;
  ASSERT_EQ(file_.Read(&content, &problem), S_OK) << problem;
  EXPECT_EQ(content.Value("Dead", ""), nullptr);
  for (int process = 0; process < kDying; ++process) {
    for (int update = 0; update < 40; ++update) {
      EXPECT_NE(content.Value(key(process, update), ""), nullptr) << key(process, update);
    }
  }
}

}  // namespace
}  // namespace halvorine
