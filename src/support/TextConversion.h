// Narrow text (UTF-8 here, the system's code page) to wide text (UTF-16) and back. Both end the
// text at its first NUL and never fail on malformed input.
#ifndef HALVORINE_SUPPORT_TEXTCONVERSION_H
#define HALVORINE_SUPPORT_TEXTCONVERSION_H

#include <halvorine/com.h>

#include <string>
#include <string_view>

namespace halvorine {

std::u16string ToWide(std::string_view text);

// ToWide into a BSTR that lives in a reused buffer, for [in] arguments that the callee copies: a
// load widens several texts per record, and once the buffer has grown nothing is allocated. The
// BSTR holds until the next Widen.
class BStringScratch {
 public:
  BSTR Widen(std::string_view text);

 private:
  std::u16string buffer_;  // the BSTR's 4-byte length as two units, the characters, a NUL
};
// A null pointer gives an empty text.
std::string ToNarrow(const char16_t* text);
std::string ToNarrow(std::u16string_view text);

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_TEXTCONVERSION_H
