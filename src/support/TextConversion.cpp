#include "support/TextConversion.h"

#include <cstdint>
#include <cstring>

#include "platform/TextCodec.h"

namespace halvorine {

std::u16string ToWide(std::string_view text) {
  return Utf8ToUtf16(text.substr(0, text.find('\0')));
}

BSTR BStringScratch::Widen(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  // ASCII, the usual case, widens in place in one pass that the compiler vectorises.
  buffer_.resize(2 + text.size());
  char16_t* const wide = buffer_.data() + 2;
  unsigned char seen = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto narrow = static_cast<unsigned char>(text[at]);
    seen |= narrow;
    wide[at] = narrow;
  }
  if (seen >= 0x80) buffer_.replace(2, std::u16string::npos, Utf8ToUtf16(text));
  const auto bytes = static_cast<std::uint32_t>((buffer_.size() - 2) * sizeof(char16_t));
  std::memcpy(buffer_.data(), &bytes, sizeof bytes);
  return buffer_.data() + 2;
}

std::string ToNarrow(const char16_t* text) {
  return text == nullptr ? std::string() : Utf16ToUtf8(text);
}

std::string ToNarrow(std::u16string_view text) {
  return Utf16ToUtf8(text.substr(0, text.find(u'\0')));
}

}  // namespace halvorine
