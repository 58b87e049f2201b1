#include "sim/SimUserCalendar.h"

#include <utility>

namespace valdrix::sim {

using platform::Instant;
namespace chrono = std::chrono;

Instant SimUserCalendar::now() const {
  return origin_ + chrono::milliseconds(static_cast<std::int64_t>(runLoop_.now() * 1000));
}

Instant SimUserCalendar::startOfDay(Instant instant) const {
  return chrono::floor<chrono::days>(instant + offset_) - offset_;
}

std::optional<Instant> SimUserCalendar::addDays(Instant instant, std::int64_t days) const {
  constexpr std::int64_t farthest = 1'000'000;
  if (days < -farthest || days > farthest) return std::nullopt;
  return instant + chrono::days(days);
}

platform::DateFields SimUserCalendar::fields(Instant instant) const {
  const auto local = instant + offset_;
  const auto day = chrono::floor<chrono::days>(local);
  const chrono::year_month_day date{day};
  const chrono::hh_mm_ss time{local - day};
  return {.year = static_cast<int>(date.year()),
          .month = static_cast<unsigned>(date.month()),
          .day = static_cast<unsigned>(date.day()),
          .weekday = chrono::weekday{day}.iso_encoding() - 1,
          .hour = static_cast<unsigned>(time.hours().count()),
          .minute = static_cast<unsigned>(time.minutes().count())};
}

Token SimUserCalendar::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

}  // namespace valdrix::sim
