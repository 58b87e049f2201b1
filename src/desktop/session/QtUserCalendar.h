#pragma once

#include <chrono>
#include <filesystem>
#include <functional>

#include <QSocketNotifier>
#include <QTimeZone>

#include "desktop/session/FileWatch.h"
#include "desktop/session/UniqueFd.h"
#include "observation/Listeners.h"
#include "platform/UserCalendar.h"

namespace valdrix::desktop {

/// The system's clock and time zone. Needs an event loop.
///
/// The zone is the one that TZ names, which then stays, or else the one that `localtime` is a link
/// to. A zone that nobody knows is UTC, as for the C library.
///
/// Nothing is polled. One timer of the kernel wakes the process at the next start of a day, and as
/// soon as the clock is set, which kernels since 5.15 also say after a sleep.
class QtUserCalendar final : public platform::UserCalendar {
 public:
  explicit QtUserCalendar(std::filesystem::path localtime = "/etc/localtime");

  [[nodiscard]] platform::Instant now() const override;
  [[nodiscard]] platform::Instant startOfDay(platform::Instant instant) const override;
  [[nodiscard]] std::optional<platform::Instant> addDays(platform::Instant instant,
                                                         std::int64_t days) const override;
  [[nodiscard]] platform::DateFields fields(platform::Instant instant) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

  /// The zone that the system has now; already the new one when observers of changes are called.
  [[nodiscard]] const QTimeZone& zone() const { return zone_; }

 private:
  /// What a clock on the wall shows.
  using LocalTime = std::chrono::local_time<std::chrono::milliseconds>;

  [[nodiscard]] LocalTime localTime(platform::Instant instant) const;
  [[nodiscard]] platform::Instant firstInstantAt(LocalTime time) const;
  [[nodiscard]] QTimeZone readZone() const;
  void rereadZone();
  [[nodiscard]] platform::Instant startOfNextDay() const;
  void awaitNextDay();
  void handleTimer();

  std::filesystem::path localtime_;
  QTimeZone zone_;
  Listeners<> observers_;
  UniqueFd timer_;
  QSocketNotifier timerNotifier_{QSocketNotifier::Read};
  FileWatch zoneWatch_;
};

}  // namespace valdrix::desktop
