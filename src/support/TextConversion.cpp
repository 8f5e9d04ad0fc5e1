#include "support/TextConversion.h"

#include <iterator>

#include "platform/TextCodec.h"

namespace halvorine {

std::u16string ToWide(std::string_view text) {
  return Utf8ToUtf16(text.substr(0, text.find('\0')));
}

BString ToWideBString(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  // Short ASCII, the usual case, widens on the stack in one pass.
  char16_t wide[256];
  if (text.size() <= std::size(wide)) {
    std::size_t at = 0;
    for (; at < text.size() && static_cast<unsigned char>(text[at]) < 0x80; ++at) {
      wide[at] = static_cast<char16_t>(text[at]);
    }
    if (at == text.size()) return BString::Copy(std::u16string_view(wide, at));
  }
  return BString::Copy(std::u16string_view(ToWide(text)));
}

std::string ToNarrow(const char16_t* text) {
  return text == nullptr ? std::string() : Utf16ToUtf8(text);
}

std::string ToNarrow(std::u16string_view text) {
  return Utf16ToUtf8(text.substr(0, text.find(u'\0')));
}

}  // namespace halvorine
