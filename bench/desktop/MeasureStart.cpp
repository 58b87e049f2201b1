#include "bench/desktop/Clock.h"
#include "bench/desktop/Measurements.h"
#include "bench/desktop/Programs.h"
#include "bench/desktop/Samples.h"

namespace valdrix::bench {

namespace {

/// Starts a program, waits for its pixel and ends it again. Milliseconds.
std::optional<double> timeToPixel(const BenchDesktop& desktop,
                                  const std::function<Program()>& start, QPoint place) {
  const auto started = Clock::now();
  auto program = start();
  const auto seconds = secondsUntil(started, [&] { return !desktop.isBare(place); });
  program.reset();
  const auto gone = secondsUntil(Clock::now(), [&] { return desktop.isBare(place); });
  if (!seconds || !gone) return std::nullopt;
  return *seconds * 1000;
}

}  // namespace

bool measureStart(BenchDesktop& desktop, Report& report, int starts) {
  report.begin("Start, beside an empty Qt window");
  Samples agent;
  Samples window;
  // The first of each only warms the caches of files and fonts.
  for (int i = 0; i <= starts; ++i) {
    const auto ours = timeToPixel(desktop, &startValdrix, place::panel);
    const auto theirs = timeToPixel(desktop, &startEmptyWindow, place::emptyWindow);
    if (!ours || !theirs) return false;
    if (i == 0) continue;
    agent.add(*ours);
    window.add(*theirs);
  }
  report.add({"start to first pixel, median", "ms", agent.median(), window.median(),
              Report::Goal::ratio, 1.3});
  return true;
}

}  // namespace valdrix::bench
