#pragma once

#include <vector>

#include "observation/Lifetime.h"
#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/Collator.h"
#include "platform/EventStore.h"
#include "platform/RunLoop.h"
#include "platform/UserCalendar.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "preferences/HiddenCalendars.h"

namespace valdrix {

/// The program's only connection to the user's calendars: whether it may read them, and the few
/// upcoming events that the panel lists. The list is made anew every minute and whenever the store,
/// the clock, the time zone or the day changes; an equal list tells nobody. Main thread only.
class CalendarService {
 public:
  /// The ports that it works with; all outlive it.
  struct Ports {
    platform::EventStore& eventStore;
    const platform::Collator& collator;
    platform::UserCalendar& userCalendar;
    platform::RunLoop& runLoop;
    const platform::UserDefaults& userDefaults;
    platform::Workspace& workspace;
  };

  /// Reads the status, without asking the user, and the events if it may.
  explicit CalendarService(const Ports& ports);
  CalendarService(const CalendarService&) = delete;
  CalendarService& operator=(const CalendarService&) = delete;

  /// As of the start or of the latest `requestAccess`.
  [[nodiscard]] platform::EventAuthorization authStatus() const { return authStatus_; }
  /// The occurrences that have not ended and start within the preferred number of days, today
  /// included: by start and then by title, and no more than preferred.
  [[nodiscard]] const std::vector<platform::Event>& events() const { return events_; }
  /// The calendar by which the events fall on days. Views that read it here are told when the clock
  /// was set, the time zone changed or a new day began.
  [[nodiscard]] const platform::UserCalendar& userCalendar() const;

  /// Asks the user for access, then reads the status anew and the events if it may. Returns at
  /// once.
  void requestAccess();
  /// Makes the list anew. To be called after a preference that it depends on changed.
  void reloadEvents();
  /// All calendars that hold events, hidden ones too, by title; none without access. Views that
  /// read them are told when the store changed.
  [[nodiscard]] std::vector<platform::EventCalendar> availableCalendars() const;
  /// Shows the user where access can be granted and taken back.
  void openCalendarPrivacySettings() const;

 private:
  void accessAnswered();
  void observeStoreChanges();
  void storeChanged();
  void userCalendarChanged();
  void startRefreshTimer();
  [[nodiscard]] HiddenCalendars readHiddenCalendarIDs() const;
  [[nodiscard]] std::vector<std::string> shownCalendarIdentifiers() const;
  /// The end of the last day that is listed; nothing when it is out of the range of dates.
  [[nodiscard]] std::optional<platform::Instant> windowEnd(platform::Instant now) const;

  Ports ports_;
  Token refreshTimer_;
  Token changeObserver_;
  Token userCalendarObserver_;
  Observed<platform::EventAuthorization> authStatus_;
  Observed<std::vector<platform::Event>> events_;
  /// How often the store changed.
  Observed<std::uint64_t> storeChanges_{0U};
  /// How often the user's calendar changed.
  Observed<std::uint64_t> userCalendarChanges_{0U};
  Lifetime lifetime_;
};

}  // namespace valdrix
