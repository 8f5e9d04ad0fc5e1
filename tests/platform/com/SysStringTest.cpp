#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
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

using namespace std::string_view_literals;

TEST(SysString, CountsBytesInFrontAndEndsInNul) {
  const struct {
    const char* name;
    std::u16string_view source;  // what the source pointer points at, NULs included
    bool nullSource;
    bool counted;  // SysAllocStringLen with length, else SysAllocString
    UINT length;
    std::u16string_view expected;
  } cases[] = {
      {"text", u"DICOMDIR"sv, false, false, 0, u"DICOMDIR"sv},
      {"empty", u""sv, false, false, 0, u""sv},
      {"up to the first NUL", u"ab\0cd"sv, false, false, 0, u"ab"sv},
      {"counted keeps NUL", u"ab\0cd"sv, false, true, 5, u"ab\0cd"sv},
      {"counted prefix", u"abcdef"sv, false, true, 3, u"abc"sv},
      {"counted empty", u"abc"sv, false, true, 0, u""sv},
      {"null source gives zeros", u""sv, true, true, 3, u"\0\0\0"sv},
  };
  for (const auto& c : cases) {
    const OLECHAR* source = c.nullSource ? nullptr : c.source.data();
    BSTR text = c.counted ? SysAllocStringLen(source, c.length) : SysAllocString(source);
    ASSERT_NE(text, nullptr) << c.name;
    EXPECT_EQ(ByteCount(text), c.expected.size() * sizeof(OLECHAR)) << c.name;
    EXPECT_EQ(Characters(text), c.expected) << c.name;
    EXPECT_EQ(text[c.expected.size()], u'\0') << c.name;
    SysFreeString(text);
  }
}

// Null stays apart from empty; a length beyond the byte count's range gives null too.
TEST(SysString, NullSourceAndOversizeGiveNull) {
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  SysFreeString(nullptr);
  EXPECT_EQ(SysAllocStringLen(nullptr, 0x7FFFFFFFu), nullptr);
  EXPECT_EQ(SysAllocStringLen(u"x", 0xFFFFFFFFu), nullptr);
}

}  // namespace
