#include "support/TextConversion.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace halvorine {
namespace {

// The conversion itself is TextCodec's; here both directions end the text at its first NUL.
TEST(TextConversionTest, BothDirectionsEndAtTheFirstNul) {
  const std::pair<std::string, std::u16string> toWide[] = {
      {"", u""},
      {std::string("\0abc", 4), u""},
      {std::string("ab\0cd\0", 6), u"ab"},
      {"/m\xC3\xBCller/DICOMDIR", u"/m\u00FCller/DICOMDIR"},
  };
  for (const auto& [narrow, wide] : toWide) EXPECT_EQ(ToWide(narrow), wide) << narrow;
  const std::pair<std::u16string, std::string> toNarrow[] = {
      {u"", ""},
      {std::u16string(u"\0abc", 4), ""},
      {std::u16string(u"ab\0cd", 5), "ab"},
      {u"/m\u00FCller/\U0001D11E", "/m\xC3\xBCller/\xF0\x9D\x84\x9E"},
  };
  for (const auto& [wide, narrow] : toNarrow) {
    EXPECT_EQ(ToNarrow(std::u16string_view(wide)), narrow) << narrow;
    EXPECT_EQ(ToNarrow(wide.c_str()), narrow) << narrow;
  }
  EXPECT_EQ(ToNarrow(static_cast<const char16_t*>(nullptr)), "");
}

}  // namespace
}  // namespace halvorine
