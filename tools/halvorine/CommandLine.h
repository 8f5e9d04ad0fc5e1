#ifndef HALVORINE_TOOLS_HALVORINE_COMMANDLINE_H
#define HALVORINE_TOOLS_HALVORINE_COMMANDLINE_H

#include <span>
#include <string>

namespace halvorine {

// A command of the host: "halvorine NAME OPERAND [--FLAG]".
struct Command {
  const char* name;
  const char* operand;  // as the usage names it, e.g. "FOLDER"
  const char* flag;     // the one flag that it takes, e.g. "--quiet", or nullptr
  const char* summary;
  int (*run)(const std::string& operand, bool flag);
};

// Finds the command that the arguments (without the program's name) name and runs it, giving its
// exit code. "-h" or "--help" anywhere prints the usage to standard output and gives 0; arguments
// that name no command, lack the operand or hold anything more print what is wrong and the usage
// to standard error and give 2.
int RunCommandLine(std::span<const Command> commands, std::span<char* const> arguments);

}  // namespace halvorine

#endif  // HALVORINE_TOOLS_HALVORINE_COMMANDLINE_H
