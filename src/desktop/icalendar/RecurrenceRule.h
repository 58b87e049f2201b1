#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/icalendar/CalendarZone.h"
#include "desktop/icalendar/PlainRecurrence.h"
#include "desktop/icalendar/RecurrenceWalk.h"
#include "desktop/icalendar/SubdailyRecurrence.h"

namespace valdrix::desktop {

/// A RRULE of RFC 5545. Walks local times without a zone, which become instants afterwards: so a
/// meeting at nine stays at nine when the clocks change.
class RecurrenceRule {
 public:
  /// Nothing for what is no rule, and for rules with a calendar of their own (RFC 7529).
  [[nodiscard]] static std::optional<RecurrenceRule> parse(std::string_view value);

  /// Offers the occurrences in `range`, in order, of an event that first starts at `start`, which
  /// is one of them whether the rule says so or not. `zone` is the start's, for an UNTIL in UTC.
  WalkEnd walk(WallTime start, bool isAllDay, const CalendarZone& zone, WallRange range,
               WorkBudget& budget, const OccurrenceTaker& take) const;

  /// Whether looking far ahead costs little.
  [[nodiscard]] bool isCheap() const { return plain_ || subdaily_; }

 private:
  [[nodiscard]] WallTime lastStart(bool isAllDay, const CalendarZone& zone) const;
  WalkEnd walkRule(WallTime start, bool isAllDay, WallRange range, WorkBudget& budget,
                   const OccurrenceTaker& take) const;
  WalkEnd walkByLibical(WallTime start, bool isAllDay, WallRange range, WorkBudget& budget,
                        const OccurrenceTaker& take) const;

  std::string text_;
  std::optional<PlainRecurrence> plain_;
  std::shared_ptr<const SubdailyRecurrence> subdaily_;
  std::optional<IcalDateTime> until_;
  std::int64_t count_ = 0;  ///< 0 for no end
};

}  // namespace valdrix::desktop
