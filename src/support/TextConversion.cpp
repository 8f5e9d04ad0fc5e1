#include "support/TextConversion.h"

#include "platform/TextCodec.h"

namespace halvorine {

std::u16string ToWide(std::string_view text) {
  return Utf8ToUtf16(text.substr(0, text.find('\0')));
}

std::string ToNarrow(const char16_t* text) {
  return text == nullptr ? std::string() : Utf16ToUtf8(text);
}

std::string ToNarrow(std::u16string_view text) {
  return Utf16ToUtf8(text.substr(0, text.find(u'\0')));
}

}  // namespace halvorine
