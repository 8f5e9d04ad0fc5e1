// Narrow text (UTF-8 here, the system's code page) to wide text (UTF-16) and back. Both end the
// text at its first NUL and never fail on malformed input.
#ifndef HALVORINE_SUPPORT_TEXTCONVERSION_H
#define HALVORINE_SUPPORT_TEXTCONVERSION_H

#include <string>
#include <string_view>

namespace halvorine {

std::u16string ToWide(std::string_view text);

// A null pointer gives an empty text.
std::string ToNarrow(const char16_t* text);
std::string ToNarrow(std::u16string_view text);

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_TEXTCONVERSION_H
