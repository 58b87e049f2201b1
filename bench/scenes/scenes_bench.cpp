// What opening the settings costs, beside a window of Qt's own that shows as many controls, and
// what is left of it once it is closed. On a private X server.

#include <cstdio>
#include <functional>
#include <unistd.h>

#include <QApplication>
#include <QCheckBox>
#include <QCommandLineParser>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>
#include <QVBoxLayout>

#include "bench/desktop/Clock.h"
#include "bench/desktop/ProcessProbe.h"
#include "bench/desktop/Report.h"
#include "bench/desktop/Samples.h"
#include "desktop/scenes/QtSceneHost.h"
#include "desktop/session/QtRunLoop.h"
#include "preferences/PreferenceDefaults.h"
#include "settings/SettingsView.h"
#include "sim/SimDesktop.h"
#include "tests/support/VirtualDisplay.h"

namespace {

using namespace valdrix;
using namespace valdrix::bench;

/// As many calendars as make a tab with something to do.
constexpr int calendarCount = 20;
constexpr std::size_t calendarTab = 1;
constexpr double frame = 1000.0 / 60;

/// The program's own settings on a simulated desktop.
struct Settings {
  Settings() {
    registerPreferenceDefaults(desktop.userDefaults);
    desktop.eventStore.setAuthorizationStatus(platform::EventAuthorization::fullAccess);
    for (int i = 0; i < calendarCount; ++i)
      desktop.eventStore.addCalendar(
          {std::to_string(i), "Calendrier " + std::to_string(i), {}, "Compte"});
  }

  [[nodiscard]] view::SettingsScene scene() {
    return SettingsView{{calendarService, launchAtLoginService, desktop.userDefaults,
                         desktop.accessibility, desktop.runLoop, desktop.workspace, desktop.bundle}}
        .body();
  }

  sim::SimDesktop desktop;
  CalendarService calendarService{{desktop.eventStore, desktop.collator, desktop.userCalendar,
                                   desktop.runLoop, desktop.userDefaults, desktop.workspace}};
  LaunchAtLoginService launchAtLoginService{desktop.loginItem};
};

/// Counts how often a window was painted.
class PaintCount final : public QObject {
 public:
  [[nodiscard]] int count() const { return count_; }

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count_;
    return QObject::eventFilter(object, event);
  }

 private:
  int count_ = 0;
};

/// Milliseconds from before `open` until the window that it shows has been painted on an exposed
/// surface.
double millisecondsToPicture(const std::function<QWidget&()>& open) {
  PaintCount paints;
  const auto start = Clock::now();
  QWidget& window = open();
  window.installEventFilter(&paints);
  while (paints.count() == 0 && secondsSince(start) < 10)
    QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return secondsSince(start) * 1000;
}

/// A window of the same size with as many of Qt's controls in a plain column, as the tab shows.
std::unique_ptr<QWidget> emptyWindowWith(const QWidget& settings) {
  auto window = std::make_unique<QWidget>();
  window->setFixedSize(settings.size());
  auto* const column = new QVBoxLayout(window.get());
  auto* const tabs = new QTabBar;
  for (int i = 0; i < 4; ++i) tabs->addTab("Onglet");
  column->addWidget(tabs);
  const auto add = [&]<class Widget>(const Widget* /*like*/, auto make) {
    for (qsizetype i = settings.findChildren<Widget*>().size(); i > 0; --i)
      column->addWidget(make());
  };
  add(static_cast<QLabel*>(nullptr), [] { return new QLabel("Un titre comme il y en a"); });
  add(static_cast<QCheckBox*>(nullptr), [] { return new QCheckBox("Calendrier"); });
  add(static_cast<QPushButton*>(nullptr), [] { return new QPushButton("Ouvrir"); });
  add(static_cast<QSpinBox*>(nullptr), [] { return new QSpinBox; });
  return window;
}

void closeAndSettle(desktop::QtSceneHost& host) {
  host.settingsWindow()->close();
  while (host.settingsWindow()) QApplication::processEvents();
}

void measure(desktop::QtSceneHost& host, Report& report, int openings) {
  const auto openSettings = [&host]() -> QWidget& {
    host.openSettings(calendarTab);
    return *host.settingsWindow();
  };
  const ProcessProbe self(::getpid());
  const auto before = self.anonymousKilobytes();
  Samples ours;
  Samples theirs;
  report.begin("Opening the settings, beside a Qt window with as many controls");
  report.add({"settings, the first time", "ms", millisecondsToPicture(openSettings)});
  closeAndSettle(host);
  const auto afterFirst = self.anonymousKilobytes();
  for (int i = 0; i < openings; ++i) {
    ours.add(millisecondsToPicture(openSettings));
    auto window = emptyWindowWith(*host.settingsWindow());
    theirs.add(millisecondsToPicture([&]() -> QWidget& {
      window = emptyWindowWith(*host.settingsWindow());
      window->show();
      return *window;
    }));
    window.reset();
    closeAndSettle(host);
  }
  const auto after = self.anonymousKilobytes();
  report.add({"to the first picture, median", "ms", ours.median(), theirs.median(),
              Report::Goal::difference, 2 * frame});
  report.add({"95 % are within", "ms", ours.quantile(0.95), theirs.quantile(0.95)});
  if (!before || !afterFirst || !after) return;
  const auto left = [&](const char* name, double kilobytes) {
    report.add({name, "MB", kilobytes / 1024, std::nullopt, Report::Goal::absolute, 2});
  };
  left("own memory left by the first opening", *afterFirst - *before);
  left("own memory left by all later ones", *after - *afterFirst);
}

}  // namespace

int main(int argc, char** argv) {
  tests::VirtualDisplay display;
  if (!display.isRunning() || !display.startWindowManager()) {
    std::fputs("scenes_bench: cannot start Xvfb and openbox\n", stderr);
    return 1;
  }
  qputenv("DISPLAY", display.name().c_str());
  qputenv("QT_QPA_PLATFORM", "xcb");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QCommandLineParser parser;
  parser.addHelpOption();
  parser.addOptions({{"openings", "How often to open the windows.", "number", "25"},
                     {"json", "Also write the results there.", "file"}});
  parser.process(application);

  Settings settings;
  desktop::QtRunLoop runLoop;
  desktop::SessionBus bus(runLoop);
  desktop::QtSceneHost host(bus);
  const Token scene = host.addSettings(settings.scene());
  Report report;
  measure(host, report, parser.value("openings").toInt());
  report.print();
  return !parser.isSet("json") || report.save(parser.value("json")) ? 0 : 1;
}
