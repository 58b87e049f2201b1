#pragma once

#include <vector>

#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "platform/EventStore.h"
#include "platform/RunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated user's calendars, and what the user answers when asked for them.
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
  /// The calendars and occurrences from now on, as if another program had written them. Each
  /// occurrence names its calendar.
  void setContents(std::vector<platform::EventCalendar> calendars,
                   std::vector<platform::Event> events);

 private:
  Trace& trace_;
  platform::RunLoop& runLoop_;
  platform::EventAuthorization status_ = platform::EventAuthorization::notDetermined;
  bool grants_ = true;
  std::vector<platform::EventCalendar> calendars_;
  std::vector<platform::Event> events_;
  Listeners<> observers_;
  Lifetime lifetime_;
};

}  // namespace valdrix::sim
