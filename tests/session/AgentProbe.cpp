// Starts as a second agent would, or asks the agent as a command would, and prints what came of it.

#include <cstdio>
#include <string_view>

#include <QCoreApplication>

#include "desktop/session/AgentClient.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/SingleInstance.h"

int main(int argc, char** argv) {
  using namespace valdrix::desktop;
  const QCoreApplication application(argc, argv);
  QtRunLoop runLoop;
  SessionBus bus(runLoop);
  const std::string_view command = argc > 1 ? argv[1] : "";
  if (command == "start") {
    SingleInstance instance(bus, {});
    const auto claim = instance.claim();
    std::puts(claim == SingleInstance::Claim::only         ? "only"
              : claim == SingleInstance::Claim::handedOver ? "handed over"
                                                           : "unanswered");
    return 0;
  }
  AgentClient client(bus);
  const auto answer = command == "quit" ? client.quit() : client.status();
  std::puts(answer.text.c_str());
  return answer.exitCode;
}
