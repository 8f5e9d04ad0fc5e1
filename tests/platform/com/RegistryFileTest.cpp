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
  struct Place {
    const char* registry;
    const char* dataHome;
    const char* home;
    const char* path;
  };
  const Place places[] = {
      {"/r/classes.reg", "/d", "/h", "/r/classes.reg"},
      {"", "/d", "/h", "/d/halvorine/registry.reg"},
      {nullptr, "/d", "/h", "/d/halvorine/registry.reg"},
      {nullptr, "relative", "/h", "/h/.local/share/halvorine/registry.reg"},
      {nullptr, nullptr, "/h", "/h/.local/share/halvorine/registry.reg"},
      {nullptr, nullptr, nullptr, ""},
  };
  const char* const names[] = {"HALVORINE_REGISTRY", "XDG_DATA_HOME", "HOME"};
  std::vector<std::string> former;
  for (const char* name : names) former.push_back(getenv(name) ? getenv(name) : "");
  for (const Place& place : places) {
    const char* const values[] = {place.registry, place.dataHome, place.home};
    for (int i = 0; i < 3; ++i) {
      values[i] != nullptr ? setenv(names[i], values[i], 1) : unsetenv(names[i]);
    }
    EXPECT_EQ(RegistryFile::DefaultPath(), place.path);
  }
  for (int i = 0; i < 3; ++i) setenv(names[i], former[i].c_str(), 1);
}

class RegistryFileTest : public testing::Test {
 protected:
  // Sets key's default value, as one update.
  HRESULT Set(const std::string& key) const {
    std::string problem;
    return file_.Update(
        [&](RegistryContent& content) {
          content.SetValue(key, "", "x");
          return S_OK;
        },
        &problem);
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
}

// Each process sets keys of its own, one update each: an update that overlapped another without
// the lock would lose the other's key.
TEST_F(RegistryFileTest, ConcurrentUpdatesFromProcessesLoseNothing) {
  constexpr int kProcesses = 4;
  constexpr int kUpdates = 40;
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      bool good = true;
      for (int update = 0; update < kUpdates; ++update) {
        good &= Set("P" + std::to_string(process) + "\\" + std::to_string(update)) == S_OK;
      }
      _exit(good ? 0 : 1);
    }
    children.push_back(child);
  }
  for (pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  RegistryContent content;
  std::string problem;
  ASSERT_EQ(file_.Read(&content, &problem), S_OK) << problem;
  for (int process = 0; process < kProcesses; ++process) {
    for (int update = 0; update < kUpdates; ++update) {
      const std::string key = "P" + std::to_string(process) + "\\" + std::to_string(update);
      EXPECT_NE(content.Value(key, ""), nullptr) << key << " was lost";
    }
  }
}

// A writer that dies while it holds the lock leaves the former file, and the kernel's release
// of its lock lets the next writer in.
TEST_F(RegistryFileTest, AWriterThatDiesHalfWayLeavesTheFormerFile) {
  ASSERT_EQ(Set("A"), S_OK);
  const std::string before = ReadWholeFile(file_.Path());
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    std::string problem;
    file_.Update(
        [](RegistryContent& content) {
          content.SetValue("B", "", "never written");
          _exit(3);
          return S_OK;
        },
        &problem);
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 3);
  EXPECT_EQ(ReadWholeFile(file_.Path()), before);
  EXPECT_EQ(Set("C"), S_OK);
  EXPECT_NE(ReadWholeFile(file_.Path()).find("[HKEY_CLASSES_ROOT\\C]"), std::string::npos);
}

}  // namespace
}  // namespace halvorine
