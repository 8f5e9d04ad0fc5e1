#ifndef HALVORINE_TOOLS_HALVORINE_SERVEREXPORT_H
#define HALVORINE_TOOLS_HALVORINE_SERVEREXPORT_H

#include <string>

namespace halvorine {

// Loads the library at path, calls its export exportName (HRESULT with no arguments), unloads
// it, and prints the outcome: the status, and on a failure the description of the calling
// thread's error record when there is one. Gives the exit code, 0 for success.
int CallServerExport(const std::string& path, const char* exportName);

}  // namespace halvorine

#endif  // HALVORINE_TOOLS_HALVORINE_SERVEREXPORT_H
