#include "platform/AppendFile.h"

#include <gtest/gtest.h>

#include <string>

#include "TempFolder.h"

namespace halvorine {
namespace {

TEST(AppendFileTest, CreatesAMissingFile) {
  TempFolder temp;
  AppendFile file;
  EXPECT_FALSE(file.IsOpen());
  ASSERT_TRUE(file.Open(temp.Path("new.log")));
  EXPECT_TRUE(file.IsOpen());
  EXPECT_EQ(ReadWholeFile(temp.Path("new.log")), "");
  file.Append("one\r\n");
  file.Append("two\r\n");
  EXPECT_EQ(ReadWholeFile(temp.Path("new.log")), "one\r\ntwo\r\n");
}

TEST(AppendFileTest, KeepsTheContentOfAnExistingFile) {
  TempFolder temp;
  WriteWholeFile(temp.Path("old.log"), "earlier run\n");
  AppendFile file;
  ASSERT_TRUE(file.Open(temp.Path("old.log")));
  file.Append("this run\n");
  EXPECT_EQ(ReadWholeFile(temp.Path("old.log")), "earlier run\nthis run\n");
}

// Each Append lands at the end, wherever another writer has left it.
TEST(AppendFileTest, TwoWritersInterleaveWholeLines) {
  TempFolder temp;
  AppendFile first;
  AppendFile second;
  ASSERT_TRUE(first.Open(temp.Path("shared.log")));
  ASSERT_TRUE(second.Open(temp.Path("shared.log")));
  first.Append("a1\n");
  second.Append("b1\n");
  first.Append("a2\n");
  EXPECT_EQ(ReadWholeFile(temp.Path("shared.log")), "a1\nb1\na2\n");
}

TEST(AppendFileTest, StaysClosedWhenTheFileCantBeOpened) {
  TempFolder temp;
  temp.MakeFolder("folder");
  for (const std::string& path : {temp.Path("missing/a.log"), temp.Path("folder"), std::string()}) {
    AppendFile file;
    EXPECT_FALSE(file.Open(path)) << path;
    EXPECT_FALSE(file.IsOpen()) << path;
    file.Append("dropped");
  }
}

}  // namespace
}  // namespace halvorine
