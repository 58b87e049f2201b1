#include "commands/RestoreKeysCommand.h"

#include <cstdio>

#include <QCoreApplication>

#include "commands/CustodyReport.h"
#include "commands/Failure.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/SessionBus.h"
#include "desktop/shortcuts/SessionKeyCustody.h"

namespace valdrix::commands {

int restoreKeysAlone(int& argc, char** argv) {
  constexpr double busSeconds = 1;
  constexpr double mostSeconds = 10;
  const QCoreApplication application(argc, argv);
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus(runLoop);
  // Without a bus each desktop says itself what that means.
  (void)bus.waitUntilConnected(busSeconds);
  const auto custody = desktop::sessionKeyCustody(runLoop, bus);
  const auto observer = custody->observe([&] {
    if (!custody->state().isBusy) QCoreApplication::exit();
  });
  const auto limit = runLoop.scheduleTimer(mostSeconds, false, [] { QCoreApplication::exit(); });
  custody->restore();
  QCoreApplication::exec();
  const auto state = custody->state();
  if (state.isBusy)
    return fail(
        "le bureau n'a pas répondu à temps : tous ses réglages ne sont "
        "peut-être pas comme avant");
  const auto [isDone, text] = custodyReport(state);
  std::fprintf(isDone ? stdout : stderr, "%s\n", text.c_str());
  return isDone ? 0 : 1;
}

}  // namespace valdrix::commands
