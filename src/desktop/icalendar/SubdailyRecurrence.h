#pragma once

#include <bitset>
#include <chrono>
#include <cstdint>
#include <optional>

#include "desktop/icalendar/RecurrenceWalk.h"

struct icalrecurrencetype;

namespace valdrix::desktop {

/// HOURLY, MINUTELY and SECONDLY rules. libical's iterator may never come back from one that its BY
/// parts make impossible; this walk leaps over what they leave out.
class SubdailyRecurrence {
 public:
  /// Nothing for other rules, and for parts that mean nothing here.
  [[nodiscard]] static std::optional<SubdailyRecurrence> from(const icalrecurrencetype& rule);

  /// Offers the occurrences in `range` of an event that starts at `start`, none before it.
  WalkEnd walk(WallTime start, WallRange range, WorkBudget& budget,
               const OccurrenceTaker& take) const;

 private:
  SubdailyRecurrence() = default;
  [[nodiscard]] bool isOnDay(std::chrono::local_days day) const;
  [[nodiscard]] WallTime candidateFrom(WallTime time, WallTime start) const;

  std::chrono::seconds unit_{};
  std::int64_t interval_ = 1;
  // An empty set lets all through.
  std::bitset<24> hours_;
  std::bitset<60> minutes_;
  std::bitset<60> seconds_;
  std::bitset<13> months_;
  std::bitset<7> weekdays_;
  // The second half counts from the end.
  std::bitset<64> monthDays_;
  std::bitset<768> yearDays_;
};

}  // namespace valdrix::desktop
