#pragma once

#include <cstdint>
#include <string>

#include "observation/Observer.h"
#include "preferences/BoundPreferences.h"
#include "preferences/HiddenCalendars.h"
#include "settings/CalendarPermissionRow.h"
#include "settings/SettingsEnvironment.h"
#include "view/SettingsScene.h"

namespace valdrix {

/// Which events the notch lists. The list follows every change at once.
class CalendarTab final : public view::TabView {
 public:
  explicit CalendarTab(const SettingsEnvironment& environment);

  [[nodiscard]] view::TabContent body() const override;

 private:
  /// What decides which events are listed, as stored.
  struct Selection {
    std::int64_t maxEvents;
    std::int64_t windowDays;
    HiddenCalendars hidden;
    bool operator==(const Selection&) const = default;
  };

  [[nodiscard]] Selection selection() const;
  /// The list of hidden calendars as it is stored.
  [[nodiscard]] std::string hiddenCalendarIDsCSV() const;
  void preferencesChanged();
  [[nodiscard]] view::FormSection displaySection() const;
  [[nodiscard]] view::FormSection calendarSection() const;
  [[nodiscard]] view::FormRow calendarRow(const platform::EventCalendar& calendar,
                                          bool isHidden) const;
  void setHidden(const std::string& calendarID, bool isHidden) const;

  CalendarService& calendarService_;
  CalendarPermissionRow calendarPermissionRow_;
  BoundPreferences preferences_;
  Observer selectionObserver_;
  Selection latestSelection_;
};

}  // namespace valdrix
