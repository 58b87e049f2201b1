// What valdrix costs under a Wayland compositor, with two device pixels to a point.

#include <cstdio>

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "bench/desktop/Clock.h"
#include "bench/desktop/ProcessProbe.h"
#include "bench/desktop/Report.h"
#include "bench/desktop/Samples.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SwayCompositor.h"
#include "tests/support/WaylandTestClient.h"

namespace {

using namespace valdrix::bench;
using namespace valdrix::tests;

constexpr int scale = 2;
constexpr QSize extent{1500 / scale, 1000 / scale};
constexpr QPointF inNotch{375, 10};
constexpr QPointF elsewhere{100, 300};

QJsonObject status() {
  return QJsonDocument::fromJson(ChildProcess::run(VALDRIX_PROGRAM, {"status"}).output.toUtf8())
      .object();
}
double framesDrawn() { return status()["framesDrawn"].toDouble(); }

/// The environment of a user of nothing but a bus.
void useOwnFolders(const QTemporaryDir& folder) {
  for (const auto* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
    qputenv(name, folder.path().toUtf8());
  qputenv("VALDRIX_SYSFS", folder.filePath("sys").toUtf8());
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder.filePath("bus").toUtf8());
  for (const auto* name : {"DISPLAY", "QT_QPA_PLATFORM"}) qunsetenv(name);
}

/// Processor time and wake-ups of `probe` while something `happens`.
void addCosts(Report& report, const ProcessProbe& probe, const std::string& when,
              const std::function<void()>& happens) {
  const auto wakeUps = probe.wakeUps();
  const double cpu = probe.cpuSeconds();
  happens();
  report.add({when + ": wake-ups",
              "count",
              static_cast<double>(probe.wakeUps() - wakeUps),
              {},
              Report::Goal::absolute,
              0});
  report.add({when + ": processor", "ms", (probe.cpuSeconds() - cpu) * 1000});
}

void addExpansions(Report& report, const ProcessProbe& probe, WaylandTestClient& mouse) {
  Samples perFrame;
  Samples drawn;
  for (int i = 0; i < 5; ++i) {
    const double frames = framesDrawn();
    const double cpu = probe.cpuSeconds();
    mouse.movePointer(inNotch);
    // Longer than the spring takes to rest.
    pause(2.5);
    const double used = (probe.cpuSeconds() - cpu) * 1000;
    const double count = framesDrawn() - frames;
    drawn.add(count);
    if (count > 0) perFrame.add(used / count);
    mouse.movePointer(elsewhere);
    pause(2.5);
  }
  report.begin("An expansion under the pointer, 2 pixels a point");
  report.add({"frames drawn", "count", drawn.median()});
  report.add(
      {"processor of one frame, median", "ms", perFrame.median(), {}, Report::Goal::absolute, 1});
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const double seconds = argc > 1 ? QByteArray(argv[1]).toDouble() : 30;
  const QTemporaryDir folder;
  useOwnFolders(folder);
  SpawnedProgram bus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address",
                      "--address=" + qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString()},
                     {}, true);
  SwayCompositor compositor;
  if (!bus.readLine() || !compositor.command("output HEADLESS-1 scale 2")) {
    std::fputs("wayland_bench: sway or dbus-daemon is missing\n", stderr);
    return 1;
  }
  compositor.enter();
  WaylandTestClient mouse(extent);
  mouse.movePointer(elsewhere);
  const SpawnedProgram agent({VALDRIX_PROGRAM}, {});
  if (!secondsUntil(Clock::now(), [] { return status()["hasWindow"].toBool(); })) return 1;
  const ProcessProbe probe(agent.pid());
  pause(5);

  Report report;
  report.begin("Under a Wayland compositor");
  const auto length = std::to_string(static_cast<int>(seconds)) + " s ";
  addCosts(report, probe, length + "at rest", [&] { pause(seconds); });
  addCosts(report, probe, length + "of motion elsewhere", [&] {
    const auto start = Clock::now();
    for (int step = 0; secondsSince(start) < seconds; ++step) {
      mouse.movePointer(elsewhere + QPointF(step % 200, step % 100));
      pause(0.008);
    }
  });
  addExpansions(report, probe, mouse);
  if (const auto memory = probe.residentKilobytes())
    report.add({"resident memory", "MB", *memory / 1024});
  report.print();
  return 0;
}
