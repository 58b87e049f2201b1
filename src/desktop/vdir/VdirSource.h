#pragma once

#include <memory>
#include <optional>

#include "desktop/calendar/CalendarSource.h"
#include "desktop/session/QtUserCalendar.h"
#include "desktop/vdir/VdirHorizon.h"
#include "desktop/vdir/VdirPaths.h"
#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

class SilentPlaces;
class VdirSnapshot;
class VdirWorker;

/// Calendars in folders on disk, one event a file ("vdir"), and single iCalendar files with many.
/// They are read on a thread of its own, from `start` on; changes made by anybody are noticed. A
/// folder that does not answer is left out until it does. Only `reach` looks at permissions itself.
class VdirSource final : public CalendarSource {
 public:
  /// `runLoop` and `userCalendar` outlive this.
  VdirSource(platform::RunLoop& runLoop, QtUserCalendar& userCalendar,
             VdirPaths paths = VdirPaths::standard());
  ~VdirSource() override;
  VdirSource(const VdirSource&) = delete;
  VdirSource& operator=(const VdirSource&) = delete;

  [[nodiscard]] Reach reach() const override;
  void start() override;
  void stop() override;
  [[nodiscard]] std::vector<platform::EventCalendar> calendars() const override;
  [[nodiscard]] std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& calendarIdentifiers) const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

 private:
  [[nodiscard]] VdirHorizon horizon() const;
  void requestHorizon() const;
  void startWorker();
  void watchWorker();
  void checkWorker();
  void widen(platform::Instant start, platform::Instant end) const;

  platform::RunLoop& runLoop_;
  QtUserCalendar& userCalendar_;
  VdirPaths paths_;
  std::shared_ptr<const VdirSnapshot> snapshot_;
  Listeners<> observers_;
  Token clockChanges_;
  /// How far before and after today has ever been asked for.
  mutable std::chrono::days behind_{1};
  mutable std::chrono::days ahead_{14};
  mutable VdirHorizon horizon_{};  ///< as asked for last
  std::shared_ptr<SilentPlaces> silent_;
  std::shared_ptr<VdirWorker> worker_;
  std::optional<Lifetime> reading_;  ///< from `start` to `stop`, of one worker
  Token workerWatch_;                ///< while there is work
};

}  // namespace valdrix::desktop
