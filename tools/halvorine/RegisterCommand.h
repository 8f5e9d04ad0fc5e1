#ifndef HALVORINE_TOOLS_HALVORINE_REGISTERCOMMAND_H
#define HALVORINE_TOOLS_HALVORINE_REGISTERCOMMAND_H

#include <CLI/CLI.hpp>

namespace halvorine {

// "halvorine register LIBRARY": calls the library's DllRegisterServer; *exitCode receives the
// outcome when the command runs.
void AddRegisterCommand(CLI::App& app, int* exitCode);

}  // namespace halvorine

#endif  // HALVORINE_TOOLS_HALVORINE_REGISTERCOMMAND_H
