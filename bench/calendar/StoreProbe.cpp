#include "bench/calendar/StoreProbe.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <iterator>
#include <libical/ical.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <QCoreApplication>

#include "bench/calendar/EventFolder.h"
#include "bench/desktop/Clock.h"
#include "bench/desktop/Samples.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/vdir/VdirSource.h"

namespace valdrix::bench {
namespace fs = std::filesystem;

using desktop::VdirPaths;
using desktop::VdirSource;

namespace {

constexpr double longestWait = 600;

double residentBytes() {
  std::ifstream pages("/proc/self/statm");
  double total = 0;
  double resident = 0;
  pages >> total >> resident;
  return resident * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

/// Processor seconds of this thread: on a busy machine others' turns don't count.
double threadSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

VdirPaths pathsIn(const fs::path& home) {
  VdirPaths paths;
  paths.places = {(home / "calendars").string()};
  paths.index = home / "cache" / "calendars.index";
  return paths;
}

class Probe {
 public:
  explicit Probe(const fs::path& home) : source_(loop_, clock_, pathsIn(home)) {
    changes_ = source_.observeChanges([this] { hasNews_ = true; });
    source_.start();
  }

  [[nodiscard]] std::vector<platform::Event> week() const {
    const auto now = clock_.now();
    std::vector<std::string> identifiers;
    for (const auto& calendar : source_.calendars())
      identifiers.push_back(calendar.calendarIdentifier);
    return source_.events(now, clock_.addDays(clock_.startOfDay(now), 8).value_or(now),
                          identifiers);
  }
  /// Runs the loop until `condition` holds, which is asked now and after each notice; the seconds
  /// since `start`.
  template <class Condition>
  double until(Clock::time_point start, const Condition& condition) {
    hasNews_ = true;
    while (secondsSince(start) < longestWait) {
      const double begin = threadSeconds();
      QCoreApplication::processEvents();
      longestTurn_ = std::max(longestTurn_, threadSeconds() - begin);
      if (std::exchange(hasNews_, false) && condition()) break;
      pause(0.0002);
    }
    return secondsSince(start);
  }
  void run(double seconds) {
    const auto start = Clock::now();
    while (secondsSince(start) < seconds) QCoreApplication::processEvents(), pause(0.001);
  }
  [[nodiscard]] double longestTurn() const { return longestTurn_; }

 private:
  desktop::QtRunLoop loop_;
  desktop::QtUserCalendar clock_;
  VdirSource source_;
  bool hasNews_ = false;
  double longestTurn_ = 0;
  Token changes_;
};

double medianReload(const Probe& probe) {
  Samples samples;
  for (int i = 0; i < 500; ++i) {
    const auto start = Clock::now();
    const auto events = probe.week();
    samples.add(secondsSince(start));
  }
  return samples.median();
}

/// From the moment that a writer begins to put a changed file in place.
double medianChange(Probe& probe, const EventFolder& folder, int changes) {
  Samples samples;
  for (int i = 0; i < changes; ++i) {
    const auto title = "changed " + std::to_string(i);
    probe.run(0.4);
    const auto start = Clock::now();
    folder.change(title);
    samples.add(probe.until(start, [&] {
      return std::ranges::any_of(probe.week(), [&](const auto& e) { return e.title == title; });
    }));
  }
  return samples.median();
}

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

struct Component {
  explicit Component(const std::string& text) : handle(icalparser_parse_string(text.c_str())) {}
  ~Component() {
    if (handle != nullptr) icalcomponent_free(handle);
  }
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;
  icalcomponent* handle;
};

void countOccurrences(icalcomponent* calendar, std::size_t& count) {
  const auto now = std::time(nullptr);
  constexpr std::time_t week = 7 * 86400;
  for (auto* event = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
       event != nullptr; event = icalcomponent_get_next_component(calendar, ICAL_VEVENT_COMPONENT))
    icalcomponent_foreach_recurrence(
        event, icaltime_from_timet_with_zone(now, 0, icaltimezone_get_utc_timezone()),
        icaltime_from_timet_with_zone(now + week, 0, icaltimezone_get_utc_timezone()),
        [](icalcomponent*, icaltime_span*, void* data) { ++*static_cast<std::size_t*>(data); },
        &count);
}

}  // namespace

Figures probeStore(const fs::path& home, std::size_t expected, int changes) {
  const EventFolder folder(home / "calendars" / "bench", 0);
  const double emptyBytes = residentBytes();
  const auto start = Clock::now();
  Probe probe(home);
  Figures figures;
  figures["first"] = probe.until(start, [&] { return !probe.week().empty(); });
  figures["known"] =
      probe.until(start, [&] { return probe.week().size() >= EventFolder::eventsOfWeek; });
  figures["complete"] = probe.until(start, [&] { return probe.week().size() >= expected; });
  figures["events"] = static_cast<double>(probe.week().size());
  while (!fs::exists(pathsIn(home).index) && secondsSince(start) < longestWait) probe.run(0.005);
  figures["indexed"] = secondsSince(start);
  // Until the index is written and what that took is given back.
  probe.run(1);
  figures["reload"] = medianReload(probe);
  figures["bytes"] = residentBytes() - emptyBytes;
  figures["index"] = static_cast<double>(fs::file_size(pathsIn(home).index));
  if (changes > 0) figures["change"] = medianChange(probe, folder, changes);
  figures["turn"] = probe.longestTurn();
  return figures;
}

Figures probeNaive(const fs::path& folder) {
  const auto start = Clock::now();
  std::size_t count = 0;
  double parsing = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const auto text = contentOf(entry.path());
    const auto begin = Clock::now();
    const Component calendar(text);
    parsing += secondsSince(begin);
    if (calendar.handle != nullptr) countOccurrences(calendar.handle, count);
  }
  return {{"parsing", parsing},
          {"complete", secondsSince(start)},
          {"events", static_cast<double>(count)}};
}

}  // namespace valdrix::bench
