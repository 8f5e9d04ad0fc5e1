#ifndef HALVORINE_TOOLS_HALVORINE_UNREGISTERCOMMAND_H
#define HALVORINE_TOOLS_HALVORINE_UNREGISTERCOMMAND_H

#include <CLI/CLI.hpp>

namespace halvorine {

// "halvorine unregister LIBRARY": calls the library's DllUnregisterServer; *exitCode receives the
// outcome when the command runs.
void AddUnregisterCommand(CLI::App& app, int* exitCode);

}  // namespace halvorine

#endif  // HALVORINE_TOOLS_HALVORINE_UNREGISTERCOMMAND_H
