#include "bench/desktop/Clock.h"
#include "bench/desktop/Measurements.h"
#include "bench/desktop/ProcessProbe.h"
#include "bench/desktop/Programs.h"

namespace valdrix::bench {

namespace {

void rest(double seconds) { pause(seconds); }

/// Moves the pointer as fast as an ordinary mouse reports.
void moveElsewhere(tests::VirtualDisplay& display, double seconds) {
  constexpr auto interval = std::chrono::milliseconds(8);
  const auto start = Clock::now();
  auto next = start;
  for (int step = 0; secondsSince(start) < seconds; ++step) {
    display.movePointer(place::elsewhere + QPoint(step % 200, step % 100));
    std::this_thread::sleep_until(next += interval);
  }
}

struct Cost {
  double wakeUps;
  double cpuMilliseconds;
};

class CostMeter {
 public:
  explicit CostMeter(const ProcessProbe& probe)
      : probe_(probe), wakeUps_(probe.wakeUps()), cpuSeconds_(probe.cpuSeconds()) {}
  [[nodiscard]] Cost cost() const {
    return {static_cast<double>(probe_.wakeUps() - wakeUps_),
            (probe_.cpuSeconds() - cpuSeconds_) * 1000};
  }

 private:
  ProcessProbe probe_;
  std::uint64_t wakeUps_;
  double cpuSeconds_;
};

void addCosts(Report& report, const ProcessProbe& agent, const ProcessProbe& window,
              const std::string& when, const std::function<void()>& happens) {
  const CostMeter agentMeter(agent);
  const CostMeter windowMeter(window);
  happens();
  const Cost ours = agentMeter.cost();
  const Cost theirs = windowMeter.cost();
  report.add({when + ": wake-ups", "count", ours.wakeUps, theirs.wakeUps, Report::Goal::absolute});
  report.add({when + ": processor", "ms", ours.cpuMilliseconds, theirs.cpuMilliseconds});
}

void addMemory(Report& report, const ProcessProbe& agent, const ProcessProbe& window) {
  const auto add = [&](const char* what, auto read, Report::Goal goal) {
    const std::optional<double> ours = (agent.*read)();
    const std::optional<double> theirs = (window.*read)();
    if (ours && theirs) report.add({what, "MB", *ours / 1024, *theirs / 1024, goal, 1.3});
  };
  add("resident memory", &ProcessProbe::residentKilobytes, Report::Goal::ratio);
  add("proportional share of memory", &ProcessProbe::proportionalKilobytes, Report::Goal::none);
}

}  // namespace

bool measureRest(BenchDesktop& desktop, Report& report, double seconds) {
  report.begin("At rest, beside an empty Qt window");
  desktop.display().movePointer(place::elsewhere);
  const auto agentProgram = startValdrix();
  const auto windowProgram = startEmptyWindow();
  const auto windowShows =
      secondsUntil(Clock::now(), [&] { return !desktop.isBare(place::emptyWindow); });
  if (!waitForAgent() || !windowShows) return false;
  pause(3);
  const ProcessProbe agent(agentProgram->pid());
  const ProcessProbe window(windowProgram->pid());
  addMemory(report, agent, window);
  // A few seconds after its start valdrix looks at the sound server once more.
  pause(2);
  const auto length = std::to_string(static_cast<int>(seconds)) + " s ";
  addCosts(report, agent, window, length + "at rest", [&] { rest(seconds); });
  addCosts(report, agent, window, length + "of motion elsewhere",
           [&] { moveElsewhere(desktop.display(), seconds); });
  return agentProgram->isRunning() && windowProgram->isRunning();
}

}  // namespace valdrix::bench
