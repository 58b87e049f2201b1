#include "desktop/session/ProgramRestart.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>
#include <unistd.h>

#include <QByteArray>
#include <QString>

namespace valdrix::desktop {

namespace {

constexpr auto mark = "VALDRIX_RESTARTED";

QtMessageHandler previousHandler = nullptr;

// Qt's own words before it ends the process; it has no other way of telling.
void watchMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (message.contains(QLatin1String("connection broke"))) restartWithoutDisplay();
  if (previousHandler) previousHandler(type, context, message);
}

}  // namespace

void restartWithoutDisplay() {
  qputenv(mark, "1");
  // Signals that are waited for here would wait in vain there.
  sigset_t none{};
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
  char name[] = "valdrix";
  char* const arguments[] = {name, nullptr};
  ::execv("/proc/self/exe", arguments);
}

bool isRestartWithoutDisplay() {
  const bool isOne = qEnvironmentVariableIsSet(mark);
  qunsetenv(mark);
  return isOne;
}

void restartWhereQtWouldEnd() { previousHandler = qInstallMessageHandler(&watchMessage); }

bool awaitDisplay(bool (*isThere)()) {
  using std::chrono::milliseconds;
  constexpr milliseconds longestPause{2000};
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  // The bus, too, has yet to notice that the agent of before has gone.
  for (milliseconds pause{100}; std::chrono::steady_clock::now() < deadline;
       pause = std::min(pause * 2, longestPause)) {
    std::this_thread::sleep_for(pause);
    if (isThere()) return true;
  }
  return false;
}

}  // namespace valdrix::desktop
