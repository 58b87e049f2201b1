#include <cmath>

#include "bench/desktop/Clock.h"
#include "bench/desktop/Measurements.h"
#include "bench/desktop/ProcessProbe.h"
#include "bench/desktop/Programs.h"
#include "bench/desktop/Samples.h"

namespace valdrix::bench {

bool measureExpansion(BenchDesktop& desktop, Report& report, int expansions) {
  report.begin("An expansion under the pointer");
  desktop.display().movePointer(place::elsewhere);
  const auto program = startValdrix();
  if (!waitForAgent() || !secondsUntilRest(desktop)) return false;
  const ProcessProbe agent(program->pid());
  Samples cost;
  Samples drawn;
  Samples thereAre;
  for (int i = 0; i < expansions; ++i) {
    const double framesBefore = framesDrawn();
    const double before = agent.cpuSeconds();
    desktop.display().movePointer(place::panel);
    const auto seconds = secondsUntilRest(desktop);
    cost.add((agent.cpuSeconds() - before) * 1000);
    drawn.add(framesDrawn() - framesBefore);
    if (!seconds || drawn.quantile(1) <= 0) return false;
    thereAre.add(std::ceil(*seconds * 60));
    desktop.display().movePointer(place::elsewhere);
    if (!secondsUntilRest(desktop)) return false;
  }
  report.add({"processor, median", "ms", cost.median()});
  report.add({"frames drawn, of those there are", "count", drawn.median(), thereAre.median(),
              Report::Goal::ratio, 1});
  return true;
}

}  // namespace valdrix::bench
