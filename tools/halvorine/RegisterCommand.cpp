#include "RegisterCommand.h"

#include <memory>
#include <string>

#include "ServerExport.h"

namespace halvorine {

void AddRegisterCommand(CLI::App& app, int* exitCode) {
  CLI::App* command =
      app.add_subcommand("register", "Register the classes of an in-process component");
  auto library = std::make_shared<std::string>();
  command->add_option("library", *library, "The component, e.g. libdicomdir.so")->required();
  command->callback(
      [library, exitCode] { *exitCode = CallServerExport(*library, "DllRegisterServer"); });
}

}  // namespace halvorine
