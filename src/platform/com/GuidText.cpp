#include "platform/com/GuidText.h"

#include <cstdio>

namespace halvorine {
namespace {

// {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}: 38 characters, '-' at these places.
constexpr std::size_t kTextLength = 38;
constexpr std::size_t kDashes[] = {9, 14, 19, 24};

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool IsDash(std::size_t at) {
  for (std::size_t dash : kDashes) {
    if (at == dash) return true;
  }
  return false;
}

}  // namespace

std::string GuidText(REFGUID guid) {
  char text[kTextLength + 1];
  std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1,
                guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3],
                guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
  return text;
}

bool ParseGuid(std::string_view text, GUID* guid) {
  if (text.size() != kTextLength || text.front() != '{' || text.back() != '}') return false;
  // The 32 digits in the order of the text, which is that of the fields, most significant first.
  std::uint8_t bytes[16] = {};
  std::size_t digit = 0;
  for (std::size_t at = 1; at + 1 < text.size(); ++at) {
    if (IsDash(at)) {
      if (text[at] != '-') return false;
      continue;
    }
    const int value = DigitValue(text[at]);
    if (value < 0) return false;
    bytes[digit / 2] = static_cast<std::uint8_t>(bytes[digit / 2] << 4 | value);
    ++digit;
  }
  guid->Data1 = std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
                std::uint32_t{bytes[2]} << 8 | bytes[3];
  guid->Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
  guid->Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
  for (int i = 0; i < 8; ++i) guid->Data4[i] = bytes[8 + i];
  return true;
}

}  // namespace halvorine
