// What valdrix costs under a Wayland compositor, with two device pixels to a point.

#include <cstdio>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <sys/stat.h>

#include "bench/desktop/AgentStatus.h"
#include "bench/desktop/BenchSession.h"
#include "bench/desktop/Clock.h"
#include "bench/desktop/ProcessProbe.h"
#include "bench/desktop/Report.h"
#include "bench/desktop/Samples.h"
#include "bench/wayland/ScreenProbe.h"
#include "tests/support/SwayCompositor.h"
#include "tests/support/WaylandTestClient.h"

namespace {

using namespace valdrix::bench;
using namespace valdrix::tests;

constexpr int scale = 2;
constexpr QSize extent{1500 / scale, 1000 / scale};
constexpr QPointF inNotch{375, 10};
constexpr QPointF elsewhere{100, 300};
/// Where the yardstick's bar is filled at half its level: it stands in the middle of the screen.
constexpr QRect inBar{300, 246, 4, 4};
constexpr double frameMilliseconds = 1000 / 60.;

using Program = std::unique_ptr<SpawnedProgram>;

Program start(std::vector<std::string> arguments) {
  return std::make_unique<SpawnedProgram>(std::move(arguments), std::vector<std::string>{});
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

void measureRest(Report& report, const ProcessProbe& probe, WaylandTestClient& mouse,
                 double seconds) {
  report.begin("At rest");
  const auto length = std::to_string(static_cast<int>(seconds)) + " s ";
  addCosts(report, probe, length + "at rest", [&] { pause(seconds); });
  addCosts(report, probe, length + "of motion elsewhere", [&] {
    const auto start = Clock::now();
    for (int step = 0; secondsSince(start) < seconds; ++step) {
      mouse.movePointer(elsewhere + QPointF(step % 200, step % 100));
      pause(0.008);
    }
  });
  if (const auto memory = probe.residentKilobytes())
    report.add({"resident memory", "MB", *memory / 1024});
}

void measureExpansion(Report& report, const ProcessProbe& probe, WaylandTestClient& mouse,
                      int expansions) {
  report.begin("An expansion under the pointer, two pixels a point");
  Samples perFrame;
  Samples drawn;
  std::optional<double> first;
  for (int i = 0; i < expansions; ++i) {
    const double frames = framesDrawn();
    const double cpu = probe.cpuSeconds();
    mouse.movePointer(inNotch);
    // Longer than the spring takes to rest.
    pause(2.5);
    const double used = (probe.cpuSeconds() - cpu) * 1000;
    const double count = framesDrawn() - frames;
    if (!first) first = used;
    drawn.add(count);
    if (count > 0) perFrame.add(used / count);
    mouse.movePointer(elsewhere);
    pause(2.5);
  }
  report.add({"frames drawn, median", "count", drawn.median()});
  report.add(
      {"processor of a frame, median", "ms", perFrame.median(), {}, Report::Goal::absolute, 1});
  if (first) report.add({"processor of the first expansion", "ms", *first});
}

/// A level bar that reads its levels from a pipe, as its users run it.
class LevelBar {
 public:
  explicit LevelBar(const BenchSession& session)
      : pipe_(session.path("levels").toStdString()), isMade_(mkfifo(pipe_.c_str(), 0600) == 0) {
    QFile settings(session.path("wob.ini"));
    if (settings.open(QIODevice::WriteOnly)) settings.write("timeout = 400\n");
    settings.close();
    program_ =
        start({"sh", "-c", R"(exec wob -c "$0" <>"$1")", settings.fileName().toStdString(), pipe_});
  }
  [[nodiscard]] bool isRunning() { return isMade_ && program_->isRunning(); }
  /// What a key is bound to that shows a level.
  [[nodiscard]] Program show() const { return start({"sh", "-c", R"(echo 50 >"$0")", pipe_}); }

 private:
  std::string pipe_;
  bool isMade_;
  Program program_;
};

/// The points just below the notch, where an indicator begins.
QRect belowNotch() {
  const auto screen = agentStatus().value_or(QJsonObject())["screens"].toArray()[0].toObject();
  const int height = qRound(screen["notchSize"].toObject()["height"].toDouble());
  return {static_cast<int>(inNotch.x()) - 2, height, 4, 2};
}

bool measureKeys(Report& report, const BenchSession& session, int presses) {
  report.begin("Key command to changed picture, beside wob told by a shell");
  LevelBar bar(session);
  ScreenProbe panelProbe(belowNotch());
  ScreenProbe barProbe(inBar);
  const auto bare = panelProbe.picture();
  const auto bareOfBar = barProbe.picture();
  if (bare.empty() || bareOfBar.empty() || !bar.isRunning()) return false;
  Samples ours;
  Samples theirs;
  // The first press only lays the fonts out.
  for (int press = 0; press <= presses; ++press) {
    const auto* const key = press % 2 ? "volume-down" : "volume-up";
    Program command;
    const auto panel = panelProbe.secondsToChange([&] {
      command = start({VALDRIX_PROGRAM, "key", key});
    });
    if (!panel || command->wait() != 0 || !panelProbe.awaitPicture(bare)) return false;
    const auto level = barProbe.secondsToChange([&] { command = bar.show(); });
    if (!level || command->wait() != 0 || !barProbe.awaitPicture(bareOfBar)) return false;
    if (press == 0) continue;
    ours.add(*panel * 1000);
    theirs.add(*level * 1000);
  }
  report.add({"median of " + std::to_string(presses) + " commands", "ms", ours.median(),
              theirs.median(), Report::Goal::difference, frameMilliseconds});
  report.add({"95 % are within", "ms", ours.quantile(0.95), theirs.quantile(0.95)});
  return true;
}

int fail(const std::string& reason) {
  std::fprintf(stderr, "wayland_bench: %s\n", reason.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addHelpOption();
  parser.addOptions({{"seconds", "How long to watch the program at rest.", "number", "30"},
                     {"expansions", "How many expansions to measure.", "number", "7"},
                     {"presses", "How many key commands to time.", "number", "25"},
                     {"json", "Also write the results there.", "file"}});
  parser.process(application);

  BenchSession session;
  if (!session.start()) return fail("cannot start " + session.missing());
  // It would lead away from this compositor.
  for (const auto* name : {"DISPLAY", "QT_QPA_PLATFORM"}) qunsetenv(name);
  qputenv("PULSE_SERVER", "unix:" + qgetenv("XDG_RUNTIME_DIR") + "/pulse/native");
  SwayCompositor compositor;
  if (!compositor.command("output HEADLESS-1 scale 2")) return fail("cannot start sway");
  compositor.enter();
  WaylandTestClient mouse(extent);
  mouse.movePointer(elsewhere);
  const SpawnedProgram agent({VALDRIX_PROGRAM}, {});
  const auto hasWindow = [] { return agentStatus().value_or(QJsonObject())["hasWindow"].toBool(); };
  if (!secondsUntil(Clock::now(), hasWindow)) return fail("valdrix shows no panel");
  const ProcessProbe probe(agent.pid());
  // A few seconds after its start it looks at the sound server once more.
  pause(5);

  Report report;
  measureRest(report, probe, mouse, parser.value("seconds").toDouble());
  measureExpansion(report, probe, mouse, parser.value("expansions").toInt());
  const bool isMeasured = measureKeys(report, session, parser.value("presses").toInt());
  report.print();
  if (!isMeasured) return fail("the last of these could not be measured to its end");
  if (parser.isSet("json") && !report.save(parser.value("json")))
    return fail("cannot write " + parser.value("json").toStdString());
  return 0;
}
