#ifndef HALVORINE_TOOLS_HALVORINE_LOADCOMMAND_H
#define HALVORINE_TOOLS_HALVORINE_LOADCOMMAND_H

#include <CLI/CLI.hpp>

namespace halvorine {

// "halvorine load FOLDER [--quiet]": loads the DICOMDIR of FOLDER through the component and
// prints the tree, one line per object indented by level, with the fields that a load fills.
// On a failure the error description goes to standard error and *exitCode becomes 1.
void AddLoadCommand(CLI::App& app, int* exitCode);

}  // namespace halvorine

#endif  // HALVORINE_TOOLS_HALVORINE_LOADCOMMAND_H
