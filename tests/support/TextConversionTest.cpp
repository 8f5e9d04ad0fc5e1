#include "support/TextConversion.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace halvorine {
namespace {

// The conversion itself is TextCodec's; here both directions end the text at its first NUL.
TEST(TextConversionTest, BothDirectionsEndAtTheFirstNul) {
  const std::pair<std::string, std::u16string> cases[] = {
      {"/a/DICOMDIR", u"/a/DICOMDIR"},
      {std::string("\0abc", 4), u""},
      {std::string("ab\0cd\0", 6), u"ab"},
      {"/m\xC3\xBCller/\xF0\x9D\x84\x9E", u"/m\u00FCller/\U0001D11E"},
      {std::string(256, 'a'), std::u16string(256, u'a')},
      {std::string(257, 'a'), std::u16string(257, u'a')},
  };
  for (const auto& [narrow, wide] : cases) {
    EXPECT_EQ(ToWide(narrow), wide) << narrow;
    const std::u16string tailed = wide + u'\0' + u"cd";
    EXPECT_EQ(ToNarrow(std::u16string_view(tailed)), narrow.substr(0, narrow.find('\0')));
    EXPECT_EQ(ToNarrow(tailed.c_str()), narrow.substr(0, narrow.find('\0')));
  }
  EXPECT_EQ(ToNarrow(static_cast<const char16_t*>(nullptr)), "");
}

}  // namespace
}  // namespace halvorine
