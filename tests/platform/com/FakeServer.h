// An in-process server for the activation tests, built as a module of its own: one class, whose
// live instances keep the module from being unloaded.
#ifndef HALVORINE_TESTS_PLATFORM_COM_FAKESERVER_H
#define HALVORINE_TESTS_PLATFORM_COM_FAKESERVER_H

#include <halvorine/com.h>

// {5B0C7A8E-3D1F-4E62-9A47-1C2D3E4F5061}
inline constexpr CLSID CLSID_FakeServerObject = {
    0x5B0C7A8E, 0x3D1F, 0x4E62, {0x9A, 0x47, 0x1C, 0x2D, 0x3E, 0x4F, 0x50, 0x61}};
inline constexpr char kFakeServerObjectText[] = "{5B0C7A8E-3D1F-4E62-9A47-1C2D3E4F5061}";

#endif  // HALVORINE_TESTS_PLATFORM_COM_FAKESERVER_H
