#pragma once

#include <vector>

#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "platform/EventStore.h"
#include "platform/RunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated user's calendars, and what the user answers when asked for them. What is added and
/// removed is so by another program; a turn of the loop in which that happened gives one notice.
/// Each question for occurrences is traced.
class SimEventStore final : public platform::EventStore {
 public:
  SimEventStore(Trace& trace, platform::RunLoop& runLoop) : trace_(trace), runLoop_(runLoop) {}

  [[nodiscard]] platform::EventAuthorization authorizationStatus() const override {
    return status_;
  }
  void requestFullAccessToEvents(std::function<void(bool isGranted)> completion) override;
  [[nodiscard]] std::vector<platform::EventCalendar> calendars() const override;
  [[nodiscard]] std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& calendarIdentifiers) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

  void setAuthorizationStatus(platform::EventAuthorization status) { status_ = status; }
  /// What the user will answer; a refusal is not asked again.
  void setAnswer(bool grants) { grants_ = grants; }

  /// Adds a calendar, or changes the one of that identifier.
  void addCalendar(const platform::EventCalendar& calendar);
  /// Removes a calendar with its events. Whether there was one.
  bool removeCalendar(const std::string& identifier);
  /// Adds an occurrence to a calendar. Whether there is one of that identifier.
  bool addEvent(platform::Event event, const std::string& calendarIdentifier);
  /// Removes all occurrences of an event. Whether there were any.
  bool removeEvent(const std::string& identifier);

 private:
  [[nodiscard]] const platform::EventCalendar* calendarOf(const std::string& identifier) const;
  void changed();

  Trace& trace_;
  platform::RunLoop& runLoop_;
  platform::EventAuthorization status_ = platform::EventAuthorization::notDetermined;
  bool grants_ = true;
  std::vector<platform::EventCalendar> calendars_;
  std::vector<platform::Event> events_;
  Listeners<> observers_;
  bool isNoticeUnderWay_ = false;
  Lifetime lifetime_;
};

}  // namespace valdrix::sim
