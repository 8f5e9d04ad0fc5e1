#include "support/TextConversion.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/TextCodec.h"

namespace halvorine {

std::u16string ToWide(std::string_view text) {
  return Utf8ToUtf16(text.substr(0, text.find('\0')));
}

BSTR BStringScratch::Widen(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  buffer_.assign(2, u'\0');
  // ASCII, the usual case, widens in place with no text in between.
  if (std::all_of(text.begin(), text.end(),
                  [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    buffer_.append(text.begin(), text.end());
  } else {
    buffer_ += Utf8ToUtf16(text);
  }
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
