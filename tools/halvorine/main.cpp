// halvorine: the command-line host of the component. Its arguments are parsed by hand: a parsing
// library, with the iostreams that it brings, would take a fifth of the time of a small load.
#include <span>
#include <string>

#include "CommandLine.h"
#include "LoadCommand.h"
#include "ServerExport.h"

namespace {

int Register(const std::string& library, bool) {
  return halvorine::CallServerExport(library, "DllRegisterServer");
}

int Unregister(const std::string& library, bool) {
  return halvorine::CallServerExport(library, "DllUnregisterServer");
}

constexpr halvorine::Command kCommands[] = {
    {"load", "FOLDER", "--quiet",
     "Load the DICOMDIR of FOLDER and print its tree (--quiet: only load and release it)",
     halvorine::RunLoad},
    {"register", "LIBRARY", nullptr, "Register the classes of an in-process component", Register},
    {"unregister", "LIBRARY", nullptr,
     "Remove the registration of an in-process component's classes", Unregister},
};

}  // namespace

int main(int argc, char** argv) {
  return halvorine::RunCommandLine(kCommands, std::span<char* const>(argv + 1, argv + argc));
}
