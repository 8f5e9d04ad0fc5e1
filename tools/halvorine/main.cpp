// halvorine: the command-line host of the component.
#include <CLI/CLI.hpp>

#include "LoadCommand.h"
#include "RegisterCommand.h"
#include "UnregisterCommand.h"

int main(int argc, char** argv) {
  CLI::App app("Loads DICOMDIR discs and registers in-process components");
  app.require_subcommand(1);
  int exitCode = 0;
  halvorine::AddRegisterCommand(app, &exitCode);
  halvorine::AddUnregisterCommand(app, &exitCode);
  halvorine::AddLoadCommand(app, &exitCode);
  CLI11_PARSE(app, argc, argv);
  return exitCode;
}
