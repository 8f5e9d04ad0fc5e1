#include "support/TextConversion.h"

#include <gtest/gtest.h>

#include <string>

namespace halvorine {
namespace {

TEST(TextConversionTest, ToWideEndsAtTheFirstNul) {
  const struct {
    std::string narrow;
    std::u16string wide;
  } cases[] = {
      {"", u""},
      {std::string("\0abc", 4), u""},
      {std::string("ab\0cd\0", 6), u"ab"},
      {"/m\xC3\xBCller/DICOMDIR", u"/m\u00FCller/DICOMDIR"},
      {"bad \xFF byte", u"bad \uFFFD byte"},
  };
  for (const auto& c : cases) EXPECT_EQ(ToWide(c.narrow), c.wide) << c.narrow;
}

TEST(TextConversionTest, ToNarrowEndsAtTheFirstNul) {
  const char16_t lone[] = {u'a', 0xDC00, 0};
  const struct {
    std::u16string wide;
    std::string narrow;
  } cases[] = {
      {u"", ""},
      {std::u16string(u"\0abc", 4), ""},
      {std::u16string(u"ab\0cd", 5), "ab"},
      {u"/m\u00FCller/\U0001D11E", "/m\xC3\xBCller/\xF0\x9D\x84\x9E"},
      {lone, "a\xEF\xBF\xBD"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToNarrow(std::u16string_view(c.wide)), c.narrow) << c.narrow;
    EXPECT_EQ(ToNarrow(c.wide.c_str()), c.narrow) << c.narrow;
  }
}

TEST(TextConversionTest, ToNarrowOfANullPointerIsEmpty) {
  const char16_t* none = nullptr;
  EXPECT_EQ(ToNarrow(none), "");
}

}  // namespace
}  // namespace halvorine
