#include "commands/RunCommand.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QApplication>
#include <QCoreApplication>

#include "app/ValdrixApp.h"
#include "commands/CalendarAccess.h"
#include "commands/StatusReport.h"
#include "desktop/DesktopPlatform.h"
#include "desktop/session/AgentClient.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/SessionBus.h"
#include "desktop/session/SingleInstance.h"
#include "desktop/session/TerminationSignals.h"
#include "desktop/x11/X11Display.h"

namespace valdrix::commands {

namespace {

int fail(const char* message) {
  std::fprintf(stderr, "valdrix : %s\n", message);
  return 1;
}

/// Everything that lives as long as the agent does, in the order in which it is needed.
class Agent {
 public:
  Agent() : instance_(bus_, handlers()) {}

  [[nodiscard]] int run() {
    switch (instance_.claim()) {
      case desktop::SingleInstance::Claim::handedOver:
        return 0;
      case desktop::SingleInstance::Claim::unanswered:
        return fail("valdrix tourne déjà, mais ne répond pas");
      case desktop::SingleInstance::Claim::only:
        break;
    }
    platform_ = desktop::DesktopPlatform::make(runLoop_, bus_);
    if (!platform_) return fail("ce bureau n'est pas pris en charge");
    app_.emplace(platform_->ports());
    app_->didFinishLaunching();
    const int result = QCoreApplication::exec();
    app_.reset();
    platform_.reset();
    return result;
  }

 private:
  [[nodiscard]] desktop::SingleInstance::Handlers handlers() {
    return {
        .status = [this] { return app_ ? statusReport(app_->appDelegate(), *platform_) : "{}"; },
        .requestCalendarAccess =
            [this] {
              return app_ ? requestCalendarAccess(app_->appDelegate().calendarService(),
                                                  platform_->ports().eventStore)
                          : "";
            },
        .quit = [] { QCoreApplication::quit(); },
        // There is nothing yet that a second start could bring forward.
        .activate = [] {},
    };
  }

  desktop::QtRunLoop runLoop_;
  desktop::SessionBus bus_{runLoop_};
  std::unique_ptr<desktop::DesktopPlatform> platform_;
  std::optional<ValdrixApp> app_;
  desktop::SingleInstance instance_;
};

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

int print(const desktop::AgentClient::Answer& answer) {
  std::fprintf(answer.exitCode == 0 ? stdout : stderr, "%s\n", answer.text.c_str());
  return answer.exitCode;
}

}  // namespace

int runAgent(int& argc, char** argv) {
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
  return Agent().run();
}

int printStatus(int& argc, char** argv) {
  const QCoreApplication application(argc, argv);
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus(runLoop);
  return print(desktop::AgentClient(bus).status());
}

int requestCalendarAccess(int& argc, char** argv) {
  const QCoreApplication application(argc, argv);
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus(runLoop);
  return print(desktop::AgentClient(bus).requestCalendarAccess());
}

int quitAgent(int& argc, char** argv) {
  const QCoreApplication application(argc, argv);
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus(runLoop);
  return print(desktop::AgentClient(bus).quit());
}

}  // namespace valdrix::commands
