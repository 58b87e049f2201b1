// The program that has the panel, with everything that it needs. `valdrix` becomes it.

#include <cstdio>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "commands/CommandLine.h"
#include "commands/RestoreKeysCommand.h"
#include "commands/RunCommand.h"
#include "commands/SimulateCommand.h"

namespace {

using namespace valdrix::commands;

struct Execute {
  int& argc;
  char** argv;

  int operator()(const Run&) const { return runAgent({}, argc, argv); }
  int operator()(const OpenSettings& command) const { return runAgent(command, argc, argv); }
  int operator()(const OpenPermissions& command) const { return runAgent(command, argc, argv); }
  int operator()(const RestoreKeys&) const { return restoreKeysAlone(argc, argv); }
  int operator()(const Simulate& command) const { return simulateScenario(command, argc, argv); }
  template <class Other>
  int operator()(const Other&) const {
    std::fputs("valdrix-agent : les autres commandes se donnent à valdrix\n", stderr);
    return 2;
  }
};

}  // namespace

int main(int argc, char** argv) {
  const Command command = parse(std::vector<std::string>(argv + 1, argv + argc));
  return std::visit(Execute{argc, argv}, command);
}
