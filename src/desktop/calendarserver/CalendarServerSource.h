#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QString>

#include "desktop/calendar/CalendarSource.h"
#include "desktop/calendarserver/CalendarServerCalendar.h"
#include "desktop/calendarserver/CalendarServerRegistry.h"
#include "desktop/calendarserver/CalendarServerWorker.h"
#include "desktop/session/QtUserCalendar.h"
#include "desktop/session/SessionBus.h"
#include "observation/Listeners.h"
#include "observation/Token.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// The calendars of evolution-data-server, the calendar server of GNOME, Evolution and others:
/// those on this computer and those of the user's accounts that are enabled.
/// A calendar's identifier is that of its entry in the server's registry, an event's is the
/// calendar's, a colon and the UID.
///
/// Only the occurrences of the time that was asked for are kept. They stay when the server ends,
/// until it says otherwise again.
class CalendarServerSource final : public CalendarSource {
 public:
  /// All outlive this.
  CalendarServerSource(SessionBus& bus, platform::RunLoop& runLoop, QtUserCalendar& userCalendar);
  CalendarServerSource(const CalendarServerSource&) = delete;
  CalendarServerSource& operator=(const CalendarServerSource&) = delete;

  [[nodiscard]] Reach reach() const override;
  void start() override;
  void stop() override;
  [[nodiscard]] std::vector<platform::EventCalendar> calendars() const override;
  [[nodiscard]] std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& calendarIdentifiers) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

 private:
  /// A calendar of the server.
  struct Calendar {
    platform::EventCalendar description;
    /// Whether it could be opened, the last time that this was tried.
    bool isReadable = false;
    CalendarServerCalendar::Events events{};
    /// When and under which condition opening failed; it is not tried again before time.
    struct Failure {
      double time;
      QString condition;
    };
    std::optional<Failure> failure{};
    /// Open, being opened, or failed; null when it has to be opened.
    std::unique_ptr<CalendarServerCalendar> opened{};
  };

  void reconcile();
  void open(Calendar& calendar);
  void handleOpened(Calendar& calendar, bool isOpen);
  void handleEvents(Calendar& calendar, const CalendarServerCalendar::Events& events);
  void closeAll();
  void handleEnd(const QString& owner);
  void forgetFailures();
  void reopenLater();
  void keep(platform::Instant start, platform::Instant end) const;
  void retryLongFailed() const;

  platform::RunLoop& runLoop_;
  QtUserCalendar& userCalendar_;
  SessionBus& bus_;
  Listeners<> observers_;
  CalendarServerWorker worker_;
  /// By identifier.
  std::map<std::string, Calendar> calendars_;
  /// The time of which the occurrences are kept.
  mutable std::optional<CalendarServerCalendar::Span> span_;
  mutable Token nextRetry_;
  int reopenings_ = 0;
  double lastReopening_ = 0;
  Token nextReopening_;
  CalendarServerRegistry registry_;
  Token clockChanges_;
};

}  // namespace valdrix::desktop
