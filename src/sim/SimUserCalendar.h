#pragma once

#include <functional>

#include "observation/Listeners.h"
#include "platform/UserCalendar.h"
#include "sim/ManualRunLoop.h"

namespace valdrix::sim {

/// The simulated wall clock: the run loop's clock from a settable date on, in a zone of a settable
/// offset.
class SimUserCalendar final : public platform::UserCalendar {
 public:
  explicit SimUserCalendar(ManualRunLoop& runLoop) : runLoop_(runLoop) {}

  [[nodiscard]] platform::Instant now() const override;
  [[nodiscard]] platform::Instant startOfDay(platform::Instant instant) const override;
  [[nodiscard]] std::optional<platform::Instant> addDays(platform::Instant instant,
                                                         std::int64_t days) const override;
  [[nodiscard]] platform::DateFields fields(platform::Instant instant) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

 private:
  ManualRunLoop& runLoop_;
  /// 18 November 2026, 09:00 in Paris.
  platform::Instant origin_ =
      std::chrono::sys_days{std::chrono::year{2026} / 11 / 18} + std::chrono::hours{8};
  std::chrono::seconds offset_ = std::chrono::hours{1};
  Listeners<> observers_;
};

}  // namespace valdrix::sim
