#include "platform/TextCodec.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <bit>
#include <string>

namespace halvorine {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

struct CodecCase {
  const char* name;
  std::string utf8;
  std::u16string utf16;
};

// One U+FFFD for each ill-formed sequence; the byte that breaks a sequence starts the next one.
TEST(TextCodecTest, ReplacesMalformedUtf8) {
  const CodecCase cases[] = {
      {"stray continuation", "\x80Z", {kReplacement, u'Z'}},
      {"lead C0 is never valid", "\xC0\xAF", {kReplacement, kReplacement}},
      {"lead C1 is never valid", "\xC1\xBF", {kReplacement, kReplacement}},
      {"lead F5 and beyond", "\xF5\x80", {kReplacement, kReplacement}},
      {"byte FF", "a\xFFz", {u'a', kReplacement, u'z'}},
      {"truncated before ascii", "\xE2\x82Z", {kReplacement, u'Z'}},
      {"truncated before a lead", "\xE2\xC3\xA9", {kReplacement, u'\u00E9'}},
      {"truncated at the end", "a\xF0\x9D\x84", {u'a', kReplacement}},
      {"overlong three bytes", "\xE0\x80\xAFZ", {kReplacement, u'Z'}},
      {"overlong four bytes", "\xF0\x8F\xBF\xBF", {kReplacement}},
      {"encoded high surrogate", "\xED\xA0\x80", {kReplacement}},
      {"encoded low surrogate", "\xED\xBF\xBF", {kReplacement}},
      {"beyond U+10FFFF", "\xF4\x90\x80\x80", {kReplacement}},
  };
  for (const CodecCase& c : cases) EXPECT_EQ(Utf8ToUtf16(c.utf8), c.utf16) << c.name;
}

TEST(TextCodecTest, ReplacesLoneSurrogates) {
  const char16_t high = 0xD834;
  const char16_t low = 0xDD1E;
  const std::string replacement = "\xEF\xBF\xBD";
  const std::string pair = "\xF0\x9D\x84\x9E";
  const CodecCase cases[] = {
      {"lone high before ascii", replacement + "A", {high, u'A'}},
      {"lone high at the end", "A" + replacement, {u'A', high}},
      {"lone low", "A" + replacement + "B", {u'A', low, u'B'}},
      {"pair reversed", replacement + replacement, {low, high}},
      {"high before a pair", replacement + pair, {high, high, low}},
      {"pair before a low", pair + replacement, {high, low, low}},
  };
  for (const CodecCase& c : cases) EXPECT_EQ(Utf16ToUtf8(c.utf16), c.utf8) << c.name;
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
