#include "sim/SimUserCalendar.h"

#include <cmath>
#include <utility>

namespace valdrix::sim {

using platform::Instant;
using namespace std::chrono;

namespace {

/// Summer time begins and ends at 01:00 UTC.
SimTimeZone paris() {
  const auto at = [](year_month_day date) { return Instant(sys_days(date) + hours{1}); };
  constexpr seconds winter = hours{1};
  constexpr seconds summer = hours{2};
  return SimTimeZone(winter, {{at(2026y / March / 29), summer},
                              {at(2026y / October / 25), winter},
                              {at(2027y / March / 28), summer},
                              {at(2027y / October / 31), winter}});
}

}  // namespace

SimUserCalendar::SimUserCalendar(ManualRunLoop& runLoop)
    : runLoop_(runLoop), zone_(paris()), origin_(sys_days(2026y / November / 18) + hours{8}) {}

Instant SimUserCalendar::now() const {
  return origin_ + milliseconds(std::llround(runLoop_.now() * 1000));
}

Instant SimUserCalendar::startOfDay(Instant instant) const {
  return zone_.instantAt(floor<days>(zone_.localTime(instant)));
}

std::optional<Instant> SimUserCalendar::addDays(Instant instant, std::int64_t count) const {
  constexpr std::int64_t farthest = 1'000'000;
  if (count < -farthest || count > farthest) return std::nullopt;
  return zone_.instantAt(zone_.localTime(instant) + days(count));
}

platform::DateFields SimUserCalendar::fields(Instant instant) const {
  const auto local = zone_.localTime(instant);
  const auto day = floor<days>(local);
  const year_month_day date{day};
  const hh_mm_ss time{local - day};
  return {.year = static_cast<int>(date.year()),
          .month = static_cast<unsigned>(date.month()),
          .day = static_cast<unsigned>(date.day()),
          .weekday = weekday{day}.iso_encoding() - 1,
          .hour = static_cast<unsigned>(time.hours().count()),
          .minute = static_cast<unsigned>(time.minutes().count())};
}

Token SimUserCalendar::observeChanges(std::function<void()> block) {
  awaitNewDay();
  return observers_.add(std::move(block));
}

void SimUserCalendar::setTimeZone(SimTimeZone zone) {
  zone_ = std::move(zone);
  changed();
}

void SimUserCalendar::setNow(Instant instant) {
  origin_ += instant - now();
  changed();
}

void SimUserCalendar::changed() {
  newDayTimer_.reset();
  if (observers_.isEmpty()) return;
  awaitNewDay();
  observers_.notify();
}

void SimUserCalendar::awaitNewDay() {
  const auto tomorrow = addDays(startOfDay(now()), 1);
  if (!tomorrow) return;
  const duration<double> wait = startOfDay(*tomorrow) - now();
  newDayTimer_ = runLoop_.scheduleDesktopTimer(wait.count(), [this] { changed(); });
}

}  // namespace valdrix::sim
