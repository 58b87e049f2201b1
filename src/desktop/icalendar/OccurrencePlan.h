#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "desktop/icalendar/IcalEvent.h"
#include "desktop/icalendar/RecurrenceWalk.h"
#include "platform/Instant.h"

namespace valdrix::desktop {

struct Occurrence {
  std::chrono::sys_seconds start;
  std::chrono::sys_seconds end;
  /// Whose title and kind it has.
  const IcalEvent* event = nullptr;
  /// The clocks skip its start's time, so it comes after the next ones behind the gap.
  bool isInGap = false;
};

/// Places the occurrences of one event in time, for whoever is in zone `local`: those that stand
/// alone and those of the rules, without the exceptions and those that others replace.
class OccurrencePlan {
 public:
  /// Returns whether to go on.
  using Visitor = std::function<bool(const Occurrence&)>;

  /// `master` may be null. All must outlive this.
  OccurrencePlan(const IcalEvent* master, const std::vector<IcalEvent>& overrides,
                 const CalendarZone& local);

  /// Visits all occurrences that no rule gives. Whether the visitor wants more.
  bool visitSingle(const Visitor& visit) const;

  /// The rules whose occurrences are to be visited.
  [[nodiscard]] std::span<const RecurrenceRule> rules() const;

  /// Where the starts stand, by rule, of all occurrences that may overlap the time between.
  [[nodiscard]] WallRange startsBetween(platform::Instant start, platform::Instant end) const;

  /// Visits the occurrences that `rule` starts in `starts`, but for those that stand alone.
  WalkEnd visitRule(const RecurrenceRule& rule, WallRange starts, WorkBudget& budget,
                    const Visitor& visit) const;

  [[nodiscard]] std::chrono::sys_seconds instantOf(WallTime wall) const;

  /// By how much an occurrence may start before one that its rule gives earlier.
  [[nodiscard]] std::chrono::seconds disorder() const { return disorder_; }

 private:
  /// How long an event lasts, as `IcalDuration`.
  using Length = IcalDuration;
  /// An override of its own occurrence and all later ones.
  struct Revision {
    std::chrono::sys_seconds from;
    const IcalEvent* event;
    Length length;
  };

  [[nodiscard]] const CalendarZone& zoneOf(const IcalTime& time) const;
  [[nodiscard]] std::chrono::sys_seconds instantOf(const IcalTime& time) const;
  [[nodiscard]] std::chrono::sys_seconds occurrenceNamedBy(const IcalTime& time) const;
  [[nodiscard]] Length lengthOf(const IcalTime& start, const IcalExtent& extent) const;
  [[nodiscard]] Occurrence place(const IcalEvent& event, WallTime wall, const Length& length) const;
  [[nodiscard]] std::optional<Occurrence> placeByRule(WallTime wall) const;
  [[nodiscard]] bool isExcluded(std::chrono::sys_seconds instant) const;
  void leaveOut(const IcalTime& time);
  void addAdditions();
  void add(WallTime wall, std::optional<Length> length);
  void revise(const IcalEvent& override);

  const CalendarZone& local_;
  const IcalEvent* master_;  ///< null also when it is cancelled
  const std::vector<IcalEvent>& overrides_;
  bool isCancelled_ = false;
  Length length_{};
  std::chrono::seconds disorder_{};
  std::chrono::seconds longest_{};
  std::vector<Occurrence> additions_;
  // Sorted:
  std::vector<std::chrono::sys_seconds> excluded_;
  std::vector<std::chrono::local_days> excludedDays_;
  std::vector<Revision> revisions_;
};

}  // namespace valdrix::desktop
