// The type library DicomDirLib, as data: what the platform's type library resource holds. The
// interfaces are custom ones, derived from IUnknown, and each method returns a status code.
#ifndef HALVORINE_SERVICE_TYPELIBRARY_H
#define HALVORINE_SERVICE_TYPELIBRARY_H

#include <halvorine/com.h>

#include <span>
#include <string>
#include <string_view>

namespace halvorine {

struct TypeLibraryInterface {
  const char16_t* name;
  const IID& iid;
  // In slot order, behind the three of IUnknown.
  std::span<const char16_t* const> methods;
};

struct TypeLibrary {
  const char16_t* name;
  const GUID& libid;
  USHORT majorVersion;
  USHORT minorVersion;
  DWORD lcid;
  const char16_t* helpText;
  std::span<const TypeLibraryInterface> interfaces;
  // Their help texts are their descriptions in RegisteredClasses().
  std::span<const CLSID* const> classes;
};

const TypeLibrary& DicomDirLib();

// "<name> Interface".
std::u16string InterfaceHelpText(const TypeLibraryInterface& entry);
// "method <name>".
std::u16string MethodHelpText(std::u16string_view method);

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_TYPELIBRARY_H
