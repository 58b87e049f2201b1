#include "commands/RunCommand.h"

#include <algorithm>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <QApplication>
#include <QCoreApplication>
#include <QSessionManager>

#include "commands/Agent.h"
#include "commands/Failure.h"
#include "desktop/QtPlatformChoice.h"
#include "desktop/session/ProgramRestart.h"
#include "desktop/session/TerminationSignals.h"
#include "desktop/ui/PaintThread.h"

namespace valdrix::commands {

namespace {

/// The program's arguments, with Qt's own one for its plugins where they are to be chosen. The
/// environment would say it to every program that this one starts, too.
struct PlatformArguments {
  PlatformArguments(int argc, char** argv, std::string plugins)
      : name(std::move(plugins)), values(argv, argv + std::min(argc, 1)) {
    if (!name.empty()) values.insert(values.end(), {option.data(), name.data()});
    count = static_cast<int>(values.size());
    values.push_back(nullptr);
  }

  std::string option = "-platform";
  std::string name;
  std::vector<char*> values;
  int count = 0;
};

desktop::SettingsRequest request(const Opened& opened) {
  using Window = desktop::SettingsRequest::Window;
  auto activation = desktop::ActivationToken::take();
  if (const auto* const page = std::get_if<OpenPermissions>(&opened))
    return {page->tab, std::move(activation), Window::permissions};
  const auto* const settings = std::get_if<OpenSettings>(&opened);
  return {settings ? settings->tab : std::nullopt, std::move(activation), Window::settings};
}

}  // namespace

int runAgent(const Opened& opened, int& argc, char** argv) {
  const auto window = request(opened);
  const auto hasDisplay = [] { return desktop::QtPlatformChoice::make().hasDisplay; };
  if (desktop::isRestartWithoutDisplay() && !desktop::awaitDisplay(hasDisplay))
    return fail("l'affichage n'est pas revenu");
  auto choice = desktop::QtPlatformChoice::make();
  if (!choice.hasDisplay) return fail("aucun affichage Wayland ou X11 ne répond sur ce bureau");
  PlatformArguments arguments(argc, argv, std::move(choice.plugins));
  desktop::TerminationSignals signals;
  desktop::keepPaintingOnOneThread();
  QApplication::setDesktopFileName("valdrix");
  const QApplication application(arguments.count, arguments.values.data());
  signals.watch([] { QCoreApplication::exit(0); });
  // The autostart entry is what starts it with the session.
  QObject::connect(
      &application, &QGuiApplication::saveStateRequest, &application,
      [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
  return Agent().run(window, !std::holds_alternative<std::monostate>(opened));
}

}  // namespace valdrix::commands
