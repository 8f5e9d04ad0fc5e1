#ifndef HALVORINE_TOOLS_HALVORINE_LOADCOMMAND_H
#define HALVORINE_TOOLS_HALVORINE_LOADCOMMAND_H

#include <string>

namespace halvorine {

// "halvorine load FOLDER [--quiet]": loads the DICOMDIR of FOLDER through the component and,
// unless quiet, prints the tree, one line per object indented by level, with the fields that a
// load fills. On a failure the error description goes to standard error. Gives the exit code.
int RunLoad(const std::string& folder, bool quiet);

}  // namespace halvorine

#endif  // HALVORINE_TOOLS_HALVORINE_LOADCOMMAND_H
