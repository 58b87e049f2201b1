#include "commands/RunCommand.h"

#include <cstdio>
#include <memory>
#include <optional>

#include <QCoreApplication>
#include <QGuiApplication>

#include "app/ValdrixApp.h"
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

int print(const desktop::AgentClient::Answer& answer) {
  std::fprintf(answer.exitCode == 0 ? stdout : stderr, "%s\n", answer.text.c_str());
  return answer.exitCode;
}

}  // namespace

int runAgent(int& argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb");
  // Qt ends the process with an abort and a page of text when it finds no display.
  if (qgetenv("QT_QPA_PLATFORM") == "xcb" && !desktop::canConnectToX11Display())
    return fail("aucun serveur X ne répond sur ce bureau");
  desktop::TerminationSignals signals;
  QGuiApplication::setDesktopFileName("valdrix");
  const QGuiApplication application(argc, argv);
  signals.watch([] { QCoreApplication::quit(); });
  return Agent().run();
}

int printStatus(int& argc, char** argv) {
  const QCoreApplication application(argc, argv);
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus(runLoop);
  return print(desktop::AgentClient(bus).status());
}

int quitAgent(int& argc, char** argv) {
  const QCoreApplication application(argc, argv);
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus(runLoop);
  return print(desktop::AgentClient(bus).quit());
}

}  // namespace valdrix::commands
