#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

using namespace std::string_view_literals;

// A length beyond the byte count's range gives null, and null stays apart from empty.
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
      {"null source gives zeros", u""sv, true, true, 3, u"\0\0\0"sv},
  };
  for (const auto& c : cases) {
    const OLECHAR* source = c.nullSource ? nullptr : c.source.data();
    BSTR text = c.counted ? SysAllocStringLen(source, c.length) : SysAllocString(source);
    ASSERT_NE(text, nullptr) << c.name;
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char*>(text) - sizeof(bytes), sizeof(bytes));
    EXPECT_EQ(bytes, c.expected.size() * sizeof(OLECHAR)) << c.name;
    EXPECT_EQ(std::u16string_view(text, SysStringLen(text)), c.expected) << c.name;
    EXPECT_EQ(text[c.expected.size()], u'\0') << c.name;
    SysFreeString(text);
  }
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  SysFreeString(nullptr);
  EXPECT_EQ(SysAllocStringLen(nullptr, 0x7FFFFFFFu), nullptr);
  EXPECT_EQ(SysAllocStringLen(u"x", 0xFFFFFFFFu), nullptr);
}

}  // namespace
