#include "CommandLine.h"

#include <cstdio>
#include <optional>
#include <string_view>

namespace halvorine {
namespace {

void PrintUsage(std::FILE* stream, std::span<const Command> commands) {
  std::fputs(
      "Loads DICOMDIR discs and registers in-process components\n"
      "Usage: halvorine COMMAND OPERAND [FLAG]\n\nCommands:\n",
      stream);
  for (const Command& command : commands) {
    const std::string call =
        std::string(command.name) + " " + command.operand +
        (command.flag == nullptr ? "" : std::string(" [") + command.flag + "]");
    std::fprintf(stream, "  %-28s %s\n", call.c_str(), command.summary);
  }
}

int Refuse(std::span<const Command> commands, const std::string& problem) {
  std::fprintf(stderr, "halvorine: %s\n", problem.c_str());
  PrintUsage(stderr, commands);
  return 2;
}

const Command* FindCommand(std::span<const Command> commands, std::string_view name) {
  for (const Command& command : commands) {
    if (name == command.name) return &command;
  }
  return nullptr;
}

}  // namespace

int RunCommandLine(std::span<const Command> commands, std::span<char* const> arguments) {
  for (std::string_view argument : arguments) {
    if (argument == "-h" || argument == "--help") {
      PrintUsage(stdout, commands);
      return 0;
    }
  }
  if (arguments.empty()) return Refuse(commands, "no command given");
  const Command* command = FindCommand(commands, arguments.front());
  if (command == nullptr) {
    return Refuse(commands, "no command \"" + std::string(arguments.front()) + "\"");
  }
  std::optional<std::string> operand;
  bool flag = false;
  for (std::string_view argument : arguments.subspan(1)) {
    if (command->flag != nullptr && argument == command->flag) {
      flag = true;
    } else if (argument.starts_with("-") || operand) {
      return Refuse(commands,
                    std::string(command->name) + " doesn't take \"" + std::string(argument) + "\"");
    } else {
      operand = argument;
    }
  }
  if (!operand) {
    return Refuse(commands, std::string(command->name) + " needs its " + command->operand);
  }
  return command->run(*operand, flag);
}

}  // namespace halvorine
