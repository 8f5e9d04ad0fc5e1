#include "platform/TextCodec.h"

#include <cstdint>

namespace halvorine {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Decodes one UTF-8 sequence at text[*at] and moves *at behind it. A malformed sequence
// (a stray continuation byte, a truncated or overlong form, a surrogate, a value beyond
// U+10FFFF) gives U+FFFD; it consumes at least one byte and never the lead of the next one.
char32_t DecodeUtf8(std::string_view text, std::size_t* at) {
  const auto lead = static_cast<unsigned char>(text[(*at)++]);
  if (lead < 0x80) return lead;
  int extra = 0;
  char32_t value = 0;
  char32_t minimum = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    extra = 1, value = lead & 0x1F, minimum = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    extra = 2, value = lead & 0x0F, minimum = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    extra = 3, value = lead & 0x07, minimum = 0x10000;
  } else {
    return kReplacement;
  }
  for (int i = 0; i < extra; ++i) {
    if (*at >= text.size()) return kReplacement;
    const auto next = static_cast<unsigned char>(text[*at]);
    if ((next & 0xC0) != 0x80) return kReplacement;
    value = (value << 6) | (next & 0x3F);
    ++*at;
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < minimum || surrogate || value > 0x10FFFF) return kReplacement;
  return value;
}

void AppendUtf8(std::string& out, char32_t value) {
  if (value < 0x80) {
    out += static_cast<char>(value);
  } else if (value < 0x800) {
    out += static_cast<char>(0xC0 | (value >> 6));
    out += static_cast<char>(0x80 | (value & 0x3F));
  } else if (value < 0x10000) {
    out += static_cast<char>(0xE0 | (value >> 12));
    out += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (value & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (value >> 18));
    out += static_cast<char>(0x80 | ((value >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (value & 0x3F));
  }
}

}  // namespace

// Never more UTF-16 units than UTF-8 bytes, so the text is sized once and cut back; ASCII, the
// usual case, is copied without decoding.
std::u16string Utf8ToUtf16(std::string_view text) {
  std::u16string out(text.size(), u'\0');
  char16_t* to = out.data();
  std::size_t at = 0;
  while (at < text.size()) {
    if (const auto byte = static_cast<unsigned char>(text[at]); byte < 0x80) {
      *to++ = byte;
      ++at;
      continue;
    }
    const char32_t value = DecodeUtf8(text, &at);
    if (value < 0x10000) {
      *to++ = static_cast<char16_t>(value);
    } else {
      *to++ = static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
      *to++ = static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
    }
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
  return out;
}

std::string Utf16ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t value = text[at];
    const bool high = value >= 0xD800 && value <= 0xDBFF;
    const bool low = value >= 0xDC00 && value <= 0xDFFF;
    if (high && at + 1 < text.size() && text[at + 1] >= 0xDC00 && text[at + 1] <= 0xDFFF) {
      value = 0x10000 + ((value - 0xD800) << 10) + (text[++at] - 0xDC00);
    } else if (high || low) {
      value = kReplacement;
    }
    AppendUtf8(out, value);
  }
  return out;
}

}  // namespace halvorine
