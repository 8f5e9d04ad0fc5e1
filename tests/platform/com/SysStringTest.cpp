#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

namespace {

// The 32-bit byte count that a BSTR carries in front of its characters.
std::uint32_t ByteCount(BSTR text) {
  std::uint32_t count = 0;
  std::memcpy(&count, reinterpret_cast<const char*>(text) - sizeof(count), sizeof(count));
  return count;
}

std::u16string_view Characters(BSTR text) { return {text, SysStringLen(text)}; }

struct Allocation {
  const char* name;
  std::u16string_view source;  // what the source pointer points at, NULs included
  bool nullSource;
  bool counted;  // SysAllocStringLen with length, else SysAllocString
  UINT length;
  std::u16string_view expected;
};

void PrintTo(const Allocation& c, std::ostream* os) { *os << c.name; }

class SysStringLayout : public testing::TestWithParam<Allocation> {};

TEST_P(SysStringLayout, CountsBytesInFrontAndEndsInNul) {
  const Allocation& c = GetParam();
  const OLECHAR* source = c.nullSource ? nullptr : c.source.data();
  BSTR text = c.counted ? SysAllocStringLen(source, c.length) : SysAllocString(source);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(ByteCount(text), c.expected.size() * sizeof(OLECHAR));
  EXPECT_EQ(SysStringLen(text), c.expected.size());
  EXPECT_EQ(Characters(text), c.expected);
  EXPECT_EQ(text[c.expected.size()], u'\0');
  SysFreeString(text);
}

using namespace std::string_view_literals;

INSTANTIATE_TEST_SUITE_P(
    Allocations, SysStringLayout,
    testing::Values(Allocation{"Text", u"DICOMDIR"sv, false, false, 0, u"DICOMDIR"sv},
                    Allocation{"Empty", u""sv, false, false, 0, u""sv},
                    Allocation{"UpToFirstNul", u"ab\0cd"sv, false, false, 0, u"ab"sv},
                    Allocation{"Surrogates", u"\U0001F600x"sv, false, false, 0, u"\U0001F600x"sv},
                    Allocation{"CountedKeepsNul", u"ab\0cd"sv, false, true, 5, u"ab\0cd"sv},
                    Allocation{"CountedPrefix", u"abcdef"sv, false, true, 3, u"abc"sv},
                    Allocation{"CountedEmpty", u"abc"sv, false, true, 0, u""sv},
                    Allocation{"NullSourceGivesZeros", u""sv, true, true, 3, u"\0\0\0"sv}),
    [](const testing::TestParamInfo<Allocation>& param) { return std::string(param.param.name); });

TEST(SysString, NullDiffersFromEmpty) {
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  BSTR empty = SysAllocString(u"");
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(SysStringLen(empty), 0u);
  SysFreeString(empty);
  SysFreeString(nullptr);
}

TEST(SysString, RefusesLengthBeyondByteCount) {
  EXPECT_EQ(SysAllocStringLen(nullptr, 0x7FFFFFFFu), nullptr);
  EXPECT_EQ(SysAllocStringLen(u"x", 0xFFFFFFFFu), nullptr);
}

TEST(SysString, CopyIsIndependentOfItsSource) {
  char16_t source[] = u"abc";
  BSTR copy = SysAllocString(source);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, source);
  source[0] = u'z';
  EXPECT_EQ(Characters(copy), u"abc");
  SysFreeString(copy);
}

}  // namespace
