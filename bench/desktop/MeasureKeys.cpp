#include <cmath>

#include "bench/desktop/Clock.h"
#include "bench/desktop/Measurements.h"
#include "bench/desktop/ProcessProbe.h"
#include "bench/desktop/Programs.h"
#include "bench/desktop/Samples.h"

namespace valdrix::bench {

namespace {

constexpr double framesPerSecond = 60;
constexpr double frameMilliseconds = 1000 / framesPerSecond;

/// The agent and the yardstick that paints, ready for their keys.
class KeyPrograms {
 public:
  explicit KeyPrograms(BenchDesktop& desktop)
      : desktop_(desktop), agent_(startValdrix()), painter_(startGrabAndPaint(desktop)) {
    desktop.display().movePointer(place::elsewhere);
  }
  [[nodiscard]] bool areReady() const {
    return waitForAgent() && secondsUntil(Clock::now(), [&] {
                               return !desktop_.isBare(place::paintedRectangle);
                             }).has_value();
  }
  [[nodiscard]] ProcessProbe agent() const { return ProcessProbe(agent_->pid()); }
  [[nodiscard]] ProcessProbe painter() const { return ProcessProbe(painter_->pid()); }

 private:
  BenchDesktop& desktop_;
  Program agent_;
  Program painter_;
};

/// Milliseconds from the press of a key to another colour at `place`.
std::optional<double> timeToChange(const BenchDesktop& desktop, xcb_keycode_t key, QPoint place) {
  const auto before = desktop.pixel(place);
  const auto pressed = Clock::now();
  desktop.sendKey(key, true);
  const auto seconds = secondsUntil(
      pressed, [&] { return desktop.pixel(place) != before; }, 2);
  desktop.sendKey(key, false);
  if (!seconds) return std::nullopt;
  return *seconds * 1000;
}

/// Lets the indicator go and everything come to rest.
bool waitForBareStrip(const BenchDesktop& desktop) {
  const auto gone = secondsUntil(Clock::now(), [&] { return desktop.isBare(place::strip); });
  return gone && secondsUntilRest(desktop);
}

/// Taps a key again and again at thirty a second; `keyFor` says which at each tap.
void tapSteadily(const BenchDesktop& desktop, int times,
                 const std::function<xcb_keycode_t(int)>& keyFor) {
  constexpr auto interval = std::chrono::microseconds(1'000'000 / 30);
  auto next = Clock::now();
  for (int tap = 0; tap < times; ++tap) {
    desktop.tapKey(keyFor(tap));
    std::this_thread::sleep_until(next += interval);
  }
}

}  // namespace

bool measureKeyLatency(BenchDesktop& desktop, Report& report, int presses) {
  report.begin("Key press to changed pixel, beside a program that only grabs and paints");
  const KeyPrograms programs(desktop);
  if (!programs.areReady()) return false;
  const auto raise = desktop.keyCode(key::raiseVolume);
  const auto lower = desktop.keyCode(key::lowerVolume);
  const auto play = desktop.keyCode(key::play);
  Samples agent;
  Samples painter;
  for (int press = 0; press < presses; ++press) {
    if (!waitForBareStrip(desktop)) return false;
    // There and back again: at its limit a volume no longer changes and nothing is shown.
    const auto ours = timeToChange(desktop, press % 2 ? lower : raise, place::strip);
    if (!ours || !waitForBareStrip(desktop)) return false;
    const auto theirs = timeToChange(desktop, play, place::paintedRectangle);
    if (!theirs) return false;
    agent.add(*ours);
    painter.add(*theirs);
  }
  report.add({"median of " + std::to_string(presses) + " presses", "ms", agent.median(),
              painter.median(), Report::Goal::difference, frameMilliseconds});
  report.add({"95 % are within", "ms", agent.quantile(0.95), painter.quantile(0.95)});
  return true;
}

bool measureHeldKey(BenchDesktop& desktop, Report& report, int presses) {
  report.begin("A key held at 30 presses a second, beside a program that only grabs and paints");
  const KeyPrograms programs(desktop);
  if (!programs.areReady() || !waitForBareStrip(desktop)) return false;
  const auto raise = desktop.keyCode(key::raiseVolume);
  const auto lower = desktop.keyCode(key::lowerVolume);
  const auto shift = desktop.keyCode(key::shift);
  const auto play = desktop.keyCode(key::play);
  pause(0.5);

  const double framesBefore = framesDrawn();
  const double agentBefore = programs.agent().cpuSeconds();
  const auto start = Clock::now();
  // Fine steps, up and then down, so that each press changes the level.
  desktop.sendKey(shift, true);
  tapSteadily(desktop, presses, [&](int tap) { return tap % 50 < 25 ? raise : lower; });
  desktop.sendKey(shift, false);
  const double agentCost = programs.agent().cpuSeconds() - agentBefore;
  const double frames = framesDrawn() - framesBefore;
  const double framesThereAre = std::ceil(secondsSince(start) * framesPerSecond);

  const double painterBefore = programs.painter().cpuSeconds();
  tapSteadily(desktop, presses, [&](int) { return play; });
  const double painterCost = programs.painter().cpuSeconds() - painterBefore;

  if (frames <= 0) return false;
  report.add({"processor for " + std::to_string(presses) + " presses", "ms", agentCost * 1000,
              painterCost * 1000});
  report.add({"frames drawn, of those there are", "count", frames, framesThereAre,
              Report::Goal::ratio, 1});
  return waitForBareStrip(desktop);
}

}  // namespace valdrix::bench
