// Starts as a second agent would, or asks the agent as a command would, and prints what came of it.

#include <cstdio>
#include <iostream>
#include <string>

#include <QCoreApplication>

#include "desktop/session/AgentClient.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/SingleInstance.h"

namespace {

using namespace valdrix::desktop;

AgentAnswer start(SessionBus& bus) {
  AgentObject object{{}};
  SingleInstance instance(bus, object);
  const auto claim = instance.claim({std::nullopt, ActivationToken::take()});
  return {true, claim == SingleInstance::Claim::only         ? "only"
                : claim == SingleInstance::Claim::handedOver ? "handed over"
                                                             : "unanswered"};
}

AgentAnswer ask(SessionBus& bus, const std::string& word) {
  if (word == "start") return start(bus);
  if (word == "status") return AgentClient(bus).status();
  auto answer = AgentClient(bus).previewHousing({185.5, 32});
  std::cin.get();
  return answer;
}

}  // namespace

// agent_probe start | status | preview
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QtRunLoop runLoop;
  SessionBus bus(runLoop);
  const auto answer = ask(bus, argv[1]);
  std::puts(answer.text.c_str());
  return answer.isDone ? 0 : 1;
}
