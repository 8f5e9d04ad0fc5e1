#include "UnregisterCommand.h"

#include <memory>
#include <string>

#include "ServerExport.h"

namespace halvorine {

void AddUnregisterCommand(CLI::App& app, int* exitCode) {
  CLI::App* command = app.add_subcommand(
      "unregister", "Remove the registration of an in-process component's classes");
  auto library = std::make_shared<std::string>();
  command->add_option("library", *library, "The component, e.g. libdicomdir.so")->required();
  command->callback(
      [library, exitCode] { *exitCode = CallServerExport(*library, "DllUnregisterServer"); });
}

}  // namespace halvorine
