#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/icalendar/CalendarZone.h"
#include "desktop/icalendar/RecurrenceWalk.h"

namespace valdrix::desktop {

/// The zones that a text names. What the system knows by name is better kept than what a file says
/// of it, so the text's own definitions (VTIMEZONE) count only for names unknown to it, and within
/// their VCALENDAR.
class IcalTimezones {
 public:
  /// `interruption` must outlive this.
  explicit IcalTimezones(Interruption& interruption) : interruption_(interruption) {}

  /// From now on counts what `calendar` defines, the text from a VCALENDAR on. Its definitions are
  /// read when they are needed, so it must outlive this.
  void enter(std::string_view calendar);

  /// The zone of a TZID; null when nobody knows it, as for times in no zone, and when the text has
  /// asked for too much already.
  [[nodiscard]] std::shared_ptr<const CalendarZone> find(std::string_view tzid);

 private:
  [[nodiscard]] std::shared_ptr<const CalendarZone> knownToSystem(std::string_view name);
  void readDefinitions();

  Interruption& interruption_;
  /// For the rules of all definitions of the text.
  WorkBudget budget_{10'000'000, interruption_};
  std::string_view calendar_;
  bool areDefinitionsRead_ = false;
  /// What the system said to each name in the text: null, for many.
  std::map<std::string, std::shared_ptr<const CalendarZone>, std::less<>> names_;
  std::map<std::string, std::shared_ptr<const CalendarZone>, std::less<>> definitions_;
};

}  // namespace valdrix::desktop
