#include "reading/TextStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace halvorine {
namespace {

// Texts written into the store keep their bytes while blocks fill and new ones come, a text larger
// than a block among them, whose block leaves the free room of the last one in use.
TEST(TextStoreTest, TextsStayWhereTheyWereWrittenUntilClear) {
  TextStore store;
  std::vector<std::pair<char*, std::string>> texts;
  const auto add = [&](std::size_t size, char fill) {
    char* room = store.Allocate(size);
    std::memset(room, fill, size);
    texts.emplace_back(room, std::string(size, fill));
    return room;
  };
  char* const first = add(10, 'a');
  add(TextStore::kBlockSize + 1, 'b');
  EXPECT_EQ(add(10, 'c'), first + 10);
  for (int i = 0; i < 20000; ++i) add(1 + i % 97, static_cast<char>('d' + i % 20));
  for (const auto& [room, text] : texts) ASSERT_EQ(std::string(room, text.size()), text);
  store.Clear();
  EXPECT_NE(store.Allocate(TextStore::kBlockSize), nullptr);
}

}  // namespace
}  // namespace halvorine
