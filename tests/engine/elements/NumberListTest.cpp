#include "engine/elements/NumberList.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

namespace DicomEngine {
namespace {

using List = NumberList<std::uint32_t>;

std::vector<std::uint32_t> Numbers(const List& list) { return {list.begin(), list.end()}; }

// One number lives inline, more are allocated; copies are deep and a moved-from list is empty.
TEST(NumberListTest, HoldsAnyCountAndCopiesAndMovesWhole) {
  for (const std::vector<std::uint32_t>& numbers : {std::vector<std::uint32_t>{}, {7}, {1, 2, 3}}) {
    const List list(numbers);
    EXPECT_EQ(Numbers(list), numbers);
    List copy;
    copy = list;
    EXPECT_TRUE(copy == list);
    List moved(std::move(copy));
    EXPECT_EQ(Numbers(moved), numbers);
    EXPECT_TRUE(copy.empty());
    copy = std::move(moved);
    EXPECT_EQ(Numbers(copy), numbers);
    EXPECT_TRUE(moved.empty());
    EXPECT_THROW(list.at(numbers.size()), std::out_of_range);
  }
  EXPECT_EQ(Numbers(List(3)), (std::vector<std::uint32_t>{0, 0, 0}));
}

}  // namespace
}  // namespace DicomEngine
