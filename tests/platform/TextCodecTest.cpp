#include "platform/TextCodec.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <bit>
#include <string>
#include <utility>

namespace halvorine {
namespace {

// One U+FFFD for each ill-formed sequence, the byte that breaks a sequence starting the next
// one; a lone surrogate gives one U+FFFD too.
TEST(TextCodecTest, ReplacesMalformedUtf8AndLoneSurrogates) {
  const std::u16string r(1, 0xFFFD);
  const char16_t high = 0xD834, low = 0xDD1E;
  const std::pair<std::string, std::u16string> malformed[] = {
      {"\x80Z", r + u'Z'},  // stray continuation
      {"\xC1\xBF", r + r},  // C0 and C1 are never valid
      {"\xF5\x80", r + r},  // F5 and beyond
      {"a\xFFz", u'a' + r + u'z'},
      {"\xE2\x82Z", r + u'Z'},          // truncated before ascii
      {"\xE2\xC3\xA9", r + u'\u00E9'},  // truncated before a lead
      {"a\xF0\x9D\x84", u'a' + r},      // truncated at the end
      {"\xE0\x80\xAFZ", r + u'Z'},      // overlong
      {"\xF0\x8F\xBF\xBF", r},
      {"\xED\xA0\x80", r},      // an encoded surrogate
      {"\xF4\x90\x80\x80", r},  // beyond U+10FFFF
  };
  for (const auto& [utf8, utf16] : malformed) EXPECT_EQ(Utf8ToUtf16(utf8), utf16) << utf8;
  const std::string replacement = "\xEF\xBF\xBD";
  const std::string pair = "\xF0\x9D\x84\x9E";
  const std::pair<std::u16string, std::string> lone[] = {
      {{high, u'A'}, replacement + "A"},
      {{u'A', high}, "A" + replacement},
      {{u'A', low, u'B'}, "A" + replacement + "B"},
      {{low, high}, replacement + replacement},
      {{high, high, low}, replacement + pair},
      {{high, low, low}, pair + replacement},
  };
  for (const auto& [utf16, utf8] : lone) EXPECT_EQ(Utf16ToUtf8(utf16), utf8) << utf8;
}

// glibc's iconv serves as an independent encoder.
std::string IconvToUtf8(const std::u16string& text) {
  static_assert(std::endian::native == std::endian::little);
  iconv_t converter = iconv_open("UTF-8", "UTF-16LE");
  if (converter == reinterpret_cast<iconv_t>(-1)) return "iconv_open failed";
  std::string out(text.size() * 4, '\0');
  char* in = reinterpret_cast<char*>(const_cast<char16_t*>(text.data()));
  std::size_t inLeft = text.size() * sizeof(char16_t);
  char* at = out.data();
  std::size_t outLeft = out.size();
  const std::size_t result = iconv(converter, &in, &inLeft, &at, &outLeft);
  iconv_close(converter);
  if (result == static_cast<std::size_t>(-1)) return "iconv failed";
  out.resize(out.size() - outLeft);
  return out;
}

// Every encoded length and its boundaries, NUL included, both ways.
TEST(TextCodecTest, EveryScalarValueRoundTripsAndAgreesWithIconv) {
  EXPECT_EQ(Utf8ToUtf16(""), u"");
  std::u16string all;
  for (char32_t value = 0; value <= 0x10FFFF; ++value) {
    if (value >= 0xD800 && value <= 0xDFFF) continue;
    if (value < 0x10000) {
      all += static_cast<char16_t>(value);
    } else {
      all += static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
      all += static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
    }
  }
  const std::string utf8 = Utf16ToUtf8(all);
  EXPECT_TRUE(utf8 == IconvToUtf8(all));
  EXPECT_TRUE(Utf8ToUtf16(utf8) == all);
}

}  // namespace
}  // namespace halvorine
