#pragma once

#include <memory>
#include <vector>

#include "desktop/calendar/CalendarSource.h"
#include "observation/Listeners.h"
#include "platform/EventStore.h"

namespace valdrix::desktop {

/// All sources of calendars as one store, behind the user's permission.
class DesktopEventStore final : public platform::EventStore {
 public:
  explicit DesktopEventStore(std::vector<std::unique_ptr<CalendarSource>> sources)
      : sources_(std::move(sources)) {}

  [[nodiscard]] platform::EventAuthorization authorizationStatus() const override;
  void requestFullAccessToEvents(std::function<void(bool isGranted)> completion) override;
  [[nodiscard]] std::vector<platform::EventCalendar> calendars() const override;
  [[nodiscard]] std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& calendarIdentifiers) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

 private:
  std::vector<std::unique_ptr<CalendarSource>> sources_;
  Listeners<> observers_;
};

}  // namespace valdrix::desktop
