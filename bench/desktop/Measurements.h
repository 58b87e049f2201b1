#pragma once

#include "bench/desktop/BenchDesktop.h"
#include "bench/desktop/Report.h"

namespace valdrix::bench {

/// Each starts its own programs, adds a part to the report and ends them. False: a program did not
/// do what was to be measured.

/// Time from the start of the program to its first pixel on the screen, for `starts` starts.
bool measureStart(BenchDesktop& desktop, Report& report, int starts);

/// Memory three seconds after the start, and what runs while nothing happens and while the pointer
/// moves elsewhere, for `seconds` each.
bool measureRest(BenchDesktop& desktop, Report& report, double seconds);

/// Time from a press to the pixel that it changes, for `presses` presses.
bool measureKeyLatency(BenchDesktop& desktop, Report& report, int presses);

/// What `presses` presses cost that come thirty times a second and each change the picture.
bool measureHeldKey(BenchDesktop& desktop, Report& report, int presses);

/// What one expansion under the pointer costs, for `expansions` of them.
bool measureExpansion(BenchDesktop& desktop, Report& report, int expansions);

}  // namespace valdrix::bench
