// The program that people call: speaks to the running agent, or becomes the agent.

#include <cstdio>
#include <string>
#include <variant>
#include <vector>

#include "commands/AgentCommands.h"
#include "commands/AgentProgram.h"
#include "commands/CommandLine.h"

namespace {

using namespace valdrix::commands;

/// Carries out one command and gives the process's exit code.
struct Execute {
  int& argc;
  char** argv;

  int operator()(const Run&) const { return becomeAgent(argv); }
  int operator()(const OpenSettings&) const { return becomeAgent(argv); }
  int operator()(const OpenPermissions&) const { return becomeAgent(argv); }
  int operator()(const Simulate&) const { return becomeAgent(argv); }
  int operator()(const PressKey& command) const { return pressKey(command, argc, argv); }
  int operator()(const EntrustKeys&) const { return entrustKeys(argc, argv); }
  int operator()(const RestoreKeys&) const {
    const auto result = restoreKeys(argc, argv);
    return result ? *result : becomeAgent(argv);
  }
  int operator()(const ShowLevel& command) const { return showLevel(command, argc, argv); }
  int operator()(const DescribeHousings&) const { return describeHousings(argc, argv); }
  int operator()(const PreviewHousing& command) const {
    return previewHousing(command, argc, argv);
  }
  int operator()(const Status&) const { return printStatus(argc, argv); }
  int operator()(const Access&) const { return requestCalendarAccess(argc, argv); }
  int operator()(const Quit&) const { return quitAgent(argc, argv); }
  int operator()(const ShowVersion&) const {
    std::printf("valdrix %s (build %s)\n", VALDRIX_VERSION, VALDRIX_BUILD_NUMBER);
    return 0;
  }
  int operator()(const ShowHelp&) const {
    std::fputs(usage().c_str(), stdout);
    return 0;
  }
  int operator()(const Misuse& misuse) const {
    std::fprintf(stderr, "valdrix : %s\n\n%s", misuse.reason.c_str(), usage().c_str());
    return 2;
  }
};

}  // namespace

int main(int argc, char** argv) {
  const Command command = parse(std::vector<std::string>(argv + 1, argv + argc));
  return std::visit(Execute{argc, argv}, command);
}
