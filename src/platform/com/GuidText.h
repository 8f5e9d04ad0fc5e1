// The braced text form of a GUID, {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}, as keys and values of
// the registry hold it.
#ifndef HALVORINE_PLATFORM_COM_GUIDTEXT_H
#define HALVORINE_PLATFORM_COM_GUIDTEXT_H

#include <halvorine/com.h>

#include <string>
#include <string_view>

namespace halvorine {

// Upper-case hexadecimal digits.
std::string GuidText(REFGUID guid);
// Takes digits of either case; false, with *guid unchanged, for any other text.
bool ParseGuid(std::string_view text, GUID* guid);

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_COM_GUIDTEXT_H
