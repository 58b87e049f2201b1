#include "commands/RunCommand.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include <QApplication>
#include <QCoreApplication>

#include "commands/Agent.h"
#include "desktop/session/TerminationSignals.h"
#include "desktop/x11/X11Display.h"

namespace valdrix::commands {

namespace {

int fail(const char* message) {
  std::fprintf(stderr, "valdrix : %s\n", message);
  return 1;
}

/// The program's arguments, with Qt's own one for an X server where that is to be used. The
/// environment would say it to every program that this one starts, too.
struct PlatformArguments {
  PlatformArguments(int argc, char** argv, bool choosesX11)
      : values(argv, argv + std::min(argc, 1)) {
    if (choosesX11) values.insert(values.end(), {option.data(), name.data()});
    count = static_cast<int>(values.size());
    values.push_back(nullptr);
  }

  std::string option = "-platform";
  std::string name = "xcb";
  std::vector<char*> values;
  int count = 0;
};

}  // namespace

int runAgent(const std::optional<OpenSettings>& opened, int& argc, char** argv) {
  const desktop::SettingsRequest settings{opened ? opened->tab : std::nullopt,
                                          desktop::ActivationToken::take()};
  const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
  // Qt ends the process with an abort and a page of text when it finds no display.
  const bool needsX11 = chosen.isEmpty() || chosen == "xcb";
  if (needsX11 && !desktop::canConnectToX11Display())
    return fail("aucun serveur X ne répond sur ce bureau");
  PlatformArguments arguments(argc, argv, chosen.isEmpty());
  desktop::TerminationSignals signals;
  QApplication::setDesktopFileName("valdrix");
  const QApplication application(arguments.count, arguments.values.data());
  signals.watch([] { QCoreApplication::quit(); });
  return Agent().run(settings, opened.has_value());
}

}  // namespace valdrix::commands
