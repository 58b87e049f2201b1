#pragma once

#include <functional>

#include <QTimeZone>

#include "observation/Listeners.h"
#include "platform/UserCalendar.h"

namespace valdrix::desktop {

/// The system's clock and time zone. Needs an event loop.
class QtUserCalendar final : public platform::UserCalendar {
 public:
  [[nodiscard]] platform::Instant now() const override;
  [[nodiscard]] platform::Instant startOfDay(platform::Instant instant) const override;
  [[nodiscard]] std::optional<platform::Instant> addDays(platform::Instant instant,
                                                         std::int64_t days) const override;
  [[nodiscard]] platform::DateFields fields(platform::Instant instant) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

  /// The zone that the system has now; already the new one when observers of changes are called.
  [[nodiscard]] const QTimeZone& zone() const { return zone_; }

 private:
  QTimeZone zone_ = QTimeZone::systemTimeZone();
  Listeners<> observers_;
};

}  // namespace valdrix::desktop
