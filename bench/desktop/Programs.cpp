#include "bench/desktop/Programs.h"

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "bench/desktop/Clock.h"

namespace valdrix::bench {

namespace {

Program start(std::vector<std::string> arguments) {
  return std::make_unique<tests::SpawnedProgram>(std::move(arguments), std::vector<std::string>{});
}

/// As far down and as far to the sides as the panel ever reaches.
constexpr QRect middleColumn{BenchDesktop::size.width() / 2, 0, 1, 400};
constexpr QRect topRow{BenchDesktop::size.width() / 2 - 360, 5, 720, 1};

}  // namespace

Program startValdrix() { return start({VALDRIX_PROGRAM}); }

Program startEmptyWindow() { return start({EMPTY_WINDOW_PROGRAM, "0", "0"}); }

Program startGrabAndPaint(const BenchDesktop& desktop) {
  return start({GRAB_AND_PAINT_PROGRAM, std::to_string(desktop.keyCode(key::play)), "1900", "600"});
}

bool waitForAgent() {
  return secondsUntil(Clock::now(),
                      [] {
                        const auto status = agentStatus();
                        return status && (*status)["hasWindow"].toBool() &&
                               (*status)["mediaKeys"]["isTapInstalled"].toBool();
                      })
      .has_value();
}

std::optional<double> secondsUntilRest(const BenchDesktop& desktop) {
  const auto picture = [&] {
    return std::pair(desktop.pixels(middleColumn), desktop.pixels(topRow));
  };
  const auto start = Clock::now();
  auto changed = start;
  for (auto latest = picture(); secondsSince(changed) < 0.3;) {
    if (secondsSince(start) > 10) return std::nullopt;
    pause(0.004);
    auto current = picture();
    if (current == latest) continue;
    latest = std::move(current);
    changed = Clock::now();
  }
  return std::chrono::duration<double>(changed - start).count();
}

}  // namespace valdrix::bench
