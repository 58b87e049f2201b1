#include "commands/AgentCommands.h"

#include <chrono>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <thread>

#include <QCoreApplication>

#include "desktop/session/AgentClient.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/SessionBus.h"

namespace valdrix::commands {

namespace {

/// What a process needs to speak to the agent.
struct Connection {
  Connection(int& argc, char** argv) : application(argc, argv) {}

  QCoreApplication application;
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus{runLoop};
  desktop::AgentClient agent{bus};
};

int print(const desktop::AgentAnswer& answer) {
  if (!answer.text.empty())
    std::fprintf(answer.isDone ? stdout : stderr, "%s\n", answer.text.c_str());
  return answer.isDone ? 0 : 1;
}

/// Prints what has become of what was asked for.
int followCustody(desktop::AgentClient& agent, const desktop::AgentAnswer& begun) {
  using namespace std::chrono_literals;
  if (!begun.isDone) return print(begun);
  for (const auto end = std::chrono::steady_clock::now() + 10s;
       std::chrono::steady_clock::now() < end; std::this_thread::sleep_for(50ms)) {
    const auto answer = agent.describeCustody();
    if (!answer.isDone || !answer.text.empty()) return print(answer);
  }
  return print({false, "Le bureau met du temps à répondre : valdrix continue."});
}

/// The next size that the user wants to see; none when they are done.
std::optional<view::Size> askForSize() {
  std::string line;
  while (true) {
    std::fputs("Une autre taille, ou Entrée pour finir : ", stdout);
    std::fflush(stdout);
    if (!std::getline(std::cin, line) || line.empty()) return std::nullopt;
    if (const auto size = parseSize(line)) return size;
    std::puts("Une taille s'écrit comme 185x32.");
  }
}

}  // namespace

int printStatus(int& argc, char** argv) { return print(Connection(argc, argv).agent.status()); }

int requestCalendarAccess(int& argc, char** argv) {
  return print(Connection(argc, argv).agent.requestCalendarAccess());
}

int pressKey(const PressKey& command, int& argc, char** argv) {
  const auto& [key, isFine, isRepeat] = command.action;
  return print(Connection(argc, argv)
                   .agent.pressKey(
                       {static_cast<std::uint32_t>(key), isFine, isRepeat, command.isDebounced}));
}

int entrustKeys(int& argc, char** argv) {
  Connection connection(argc, argv);
  return followCustody(connection.agent, connection.agent.entrustKeys());
}

std::optional<int> restoreKeys(int& argc, char** argv) {
  using namespace std::chrono_literals;
  Connection connection(argc, argv);
  desktop::AgentAnswer begun{false, {}};
  // One that starts or ends refuses for a moment.
  for (int tries = 0; tries < 50 && !begun.isDone; ++tries) {
    if (tries > 0) std::this_thread::sleep_for(100ms);
    if (!connection.agent.isAgentThere()) return std::nullopt;
    begun = connection.agent.restoreKeys();
  }
  return followCustody(connection.agent, begun);
}

int showLevel(const ShowLevel& command, int& argc, char** argv) {
  Connection connection(argc, argv);
  const bool isVolume = command.kind == ShowLevel::Kind::volume;
  return print(isVolume ? connection.agent.showVolume() : connection.agent.showBrightness());
}

int describeHousings(int& argc, char** argv) {
  return print(Connection(argc, argv).agent.describeHousings());
}

int previewHousing(const PreviewHousing& command, int& argc, char** argv) {
  Connection connection(argc, argv);
  for (std::optional size = command.size; size; size = askForSize()) {
    const int result = print(connection.agent.previewHousing(*size));
    if (result != 0) return result;
  }
  return 0;
}

int quitAgent(int& argc, char** argv) { return print(Connection(argc, argv).agent.quit()); }

}  // namespace valdrix::commands
