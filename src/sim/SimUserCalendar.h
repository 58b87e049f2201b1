#pragma once

#include <functional>

#include "observation/Listeners.h"
#include "observation/Token.h"
#include "platform/UserCalendar.h"
#include "sim/ManualRunLoop.h"
#include "sim/SimTimeZone.h"

namespace valdrix::sim {

/// The simulated wall clock: runs with the run loop's clock and can be set, as can its time zone.
/// The run loop must outlive it.
class SimUserCalendar final : public platform::UserCalendar {
 public:
  explicit SimUserCalendar(ManualRunLoop& runLoop);

  [[nodiscard]] platform::Instant now() const override;
  [[nodiscard]] platform::Instant startOfDay(platform::Instant instant) const override;
  [[nodiscard]] std::optional<platform::Instant> addDays(platform::Instant instant,
                                                         std::int64_t days) const override;
  [[nodiscard]] platform::DateFields fields(platform::Instant instant) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

  [[nodiscard]] const SimTimeZone& timeZone() const { return zone_; }
  /// At first that of Paris, with the changes of 2026 and 2027.
  void setTimeZone(SimTimeZone zone);
  /// Puts the clock to `instant`. At first it is 18 November 2026, 09:00 in Paris.
  void setNow(platform::Instant instant);

 private:
  void changed();
  void awaitNewDay();

  ManualRunLoop& runLoop_;
  SimTimeZone zone_;
  /// What the wall clock shows at the run loop's 0.
  platform::Instant origin_;
  Listeners<> observers_;
  Token newDayTimer_;
};

}  // namespace valdrix::sim
