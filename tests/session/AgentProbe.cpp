// Starts as a second agent would, or asks the agent as a command would, and prints what came of it.

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

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

AgentAnswer ask(SessionBus& bus, const std::vector<std::string>& words) {
  AgentClient agent(bus);
  if (words[0] == "start") return start(bus);
  if (words[0] == "status") return agent.status();
  if (words[0] == "quit") return agent.quit();
  if (words[0] == "volume") return agent.showVolume();
  if (words[0] == "brightness") return agent.showBrightness();
  if (words[0] == "settings")
    return agent.openSettings({std::stoul(words[1]), ActivationToken::take()});
  if (words[0] == "key")
    return agent.pressKey(
        {static_cast<std::uint32_t>(std::stoul(words[1])), words.size() > 2, words.size() > 3});
  if (words[0] == "preview") {
    auto answer = agent.previewHousing({185.5, 32});
    std::cin.get();
    return answer;
  }
  return {false, "?"};
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QtRunLoop runLoop;
  SessionBus bus(runLoop);
  const auto answer = ask(bus, {argv + 1, argv + argc});
  std::puts(answer.text.c_str());
  return answer.isDone ? 0 : 1;
}
