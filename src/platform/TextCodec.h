// Narrow text is UTF-8 wherever the system speaks of the thread's or the process's code page;
// wide text is UTF-16. Neither direction fails: U+FFFD stands in for whatever is malformed.
#ifndef HALVORINE_PLATFORM_TEXTCODEC_H
#define HALVORINE_PLATFORM_TEXTCODEC_H

#include <string>
#include <string_view>

namespace halvorine {

std::u16string Utf8ToUtf16(std::string_view text);
std::string Utf16ToUtf8(std::u16string_view text);

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_TEXTCODEC_H
