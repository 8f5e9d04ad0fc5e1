#include "platform/AppendFile.h"

#include <gtest/gtest.h>

#include "TempFolder.h"

namespace halvorine {
namespace {

// Each Append lands at the end, wherever another writer has left it, and nothing is truncated; a
// file that can't be opened leaves the object closed.
TEST(AppendFileTest, CreatesOrKeepsTheFileAndAppendsAtItsEnd) {
  TempFolder temp;
  WriteWholeFile(temp.Path("old.log"), "earlier run\n");
  AppendFile created, first, second, missing;
  EXPECT_FALSE(created.IsOpen());
  ASSERT_TRUE(created.Open(temp.Path("new.log")));
  EXPECT_TRUE(created.IsOpen());
  created.Append("one\r\n");
  ASSERT_TRUE(first.Open(temp.Path("old.log")));
  ASSERT_TRUE(second.Open(temp.Path("old.log")));
  first.Append("a1\n");
  second.Append("b1\n");
  first.Append("a2\n");
  EXPECT_EQ(ReadWholeFile(temp.Path("new.log")), "one\r\n");
  EXPECT_EQ(ReadWholeFile(temp.Path("old.log")), "earlier run\na1\nb1\na2\n");
  EXPECT_FALSE(missing.Open(temp.Path("missing/a.log")));
  EXPECT_FALSE(missing.IsOpen());
  missing.Append("dropped");
}

}  // namespace
}  // namespace halvorine
