// What DllRegisterServer writes into the registry, as data: the component's classes and the
// scripts that register them. In the keys and values of a script, %NAME% stands for a text that
// the registrar supplies:
//
//   %APPID%        the application identifier        %MODULE%     the component's full path
//   %CLSID%        the class identifier              %MODULEDIR%  the folder of %MODULE%
//   %PROGID%       the programmatic name             %LIBID%      the type library's identifier
//   %VIPROGID%     the version-independent name      %VERSION%    its version, "4.0"
//   %DESCRIPTION%  the class's description           %LCID%       its locale, "409"
//   %HELPSTRING%   the type library's help text      %PLATFORM%   "linux64" or "linux32"
#ifndef HALVORINE_SERVICE_REGISTRATIONSCRIPTS_H
#define HALVORINE_SERVICE_REGISTRATIONSCRIPTS_H

#include <halvorine/com.h>

#include <span>

namespace halvorine {

// {22315A2C-8845-4BB7-B9AB-DFDB106CF564}
inline constexpr GUID APPID_DicomDir = {
    0x22315A2C, 0x8845, 0x4BB7, {0xB9, 0xAB, 0xDF, 0xDB, 0x10, 0x6C, 0xF5, 0x64}};

struct ClassRegistration {
  const CLSID& clsid;
  const char16_t* name;
  const char16_t* progId;
  const char16_t* versionIndependentProgId;
  const char16_t* description;
};

// The five classes in the order of their scripts, 102 to 106.
std::span<const ClassRegistration> RegisteredClasses();

// What DllUnregisterServer does with a key of a script.
enum class Removal {
  kNever,     // a root: made when missing, never removed
  kWhole,     // removed with its subkeys
  kReplaced,  // removed with its subkeys, also before it is written
  kIfEmpty,   // removed when neither values nor subkeys are left in it
};

struct ScriptKey {
  const char16_t* key;
  Removal removal;
  const char16_t* defaultValue;  // null for none
  const char16_t* valueName;     // null for no named value
  const char16_t* value;
};

using RegistrationScript = std::span<const ScriptKey>;

// Script 101: the application identifier.
RegistrationScript ApplicationScript();
// The script of every class, the same for each but for the replacements.
RegistrationScript ClassScript();
// The type library's keys, as the platform's type library registration writes them.
RegistrationScript TypeLibraryScript();

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_REGISTRATIONSCRIPTS_H
