#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "desktop/calendar/AccessPrompt.h"
#include "desktop/calendar/CalendarSource.h"
#include "desktop/session/PrivacyRecord.h"
#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "platform/EventStore.h"

namespace valdrix::desktop {

/// All sources of calendars as one store, behind the user's permission: without it no source is
/// started and none is asked. It may be withdrawn and given again at any time by changing the
/// record.
class DesktopEventStore final : public platform::EventStore {
 public:
  using Sources = std::vector<std::unique_ptr<CalendarSource>>;

  /// `record` and `prompt` outlive this. Calendars come in the order of `sources`.
  DesktopEventStore(Sources sources, PrivacyRecord& record, AccessPrompt& prompt);

  /// `restricted` and `writeOnly` when the user has allowed it but the system does not. Having no
  /// calendars is no obstacle.
  [[nodiscard]] platform::EventAuthorization authorizationStatus() const override;
  /// A question that the user puts off is no answer: nothing is recorded, and the next request asks
  /// again. Requests that come while it is open share it.
  void requestFullAccessToEvents(std::function<void(bool isGranted)> completion) override;

  [[nodiscard]] std::vector<platform::EventCalendar> calendars() const override;
  [[nodiscard]] std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& calendarIdentifiers) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

  /// The occurrence of an event that begins nearest to `instant`; nothing when none is known
  /// between the day before and two weeks later, or the latest end that `events` was asked for.
  [[nodiscard]] std::optional<platform::Event> occurrenceNear(std::string_view eventIdentifier,
                                                              platform::Instant instant) const;

 private:
  /// A calendar under the identifier that tells it from those of the other sources.
  struct Entry {
    const CalendarSource* source;
    std::string identifierInSource;
    platform::EventCalendar calendar;
  };

  [[nodiscard]] bool isAllowed() const;
  [[nodiscard]] std::vector<Entry> entries() const;
  void startIfAllowed();
  void stopUnlessAllowed();
  void handleAnswer(AccessPrompt::Answer answer);

  Sources sources_;
  PrivacyRecord& record_;
  AccessPrompt& prompt_;
  Listeners<> observers_;
  std::vector<Token> sourceObservers_;
  Token recordObserver_;
  bool isStarted_ = false;
  mutable platform::Instant latestEnd_{};
  std::vector<std::function<void(bool)>> completions_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
