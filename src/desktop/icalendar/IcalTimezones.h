#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/icalendar/CalendarZone.h"
#include "desktop/icalendar/RecurrenceWalk.h"

namespace valdrix::desktop {

/// The zones that one VCALENDAR names. What the system knows by name is better kept than what a
/// file says of it, so the text's own definitions (VTIMEZONE) count only for names unknown to it.
class IcalTimezones {
 public:
  /// `calendar` is the VCALENDAR's text, from which its definitions are read when they are needed;
  /// both must outlive this.
  IcalTimezones(std::string_view calendar, Interruption& interruption)
      : calendar_(calendar), interruption_(&interruption) {}

  /// The zone of a TZID; null when nobody knows it, as for times in no zone.
  [[nodiscard]] std::shared_ptr<const CalendarZone> find(std::string_view tzid);

 private:
  void readDefinitions();

  std::string_view calendar_;
  Interruption* interruption_;
  bool areDefinitionsRead_ = false;
  /// Also null, for names that nobody knows.
  std::map<std::string, std::shared_ptr<const CalendarZone>, std::less<>> zones_;
  std::map<std::string, std::shared_ptr<const CalendarZone>, std::less<>> definitions_;
};

}  // namespace valdrix::desktop
