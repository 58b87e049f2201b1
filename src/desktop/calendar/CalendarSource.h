#pragma once

#include <functional>
#include <string>
#include <vector>

#include "observation/Token.h"
#include "platform/EventStore.h"

namespace valdrix::desktop {

/// One place that the user's calendars come from, such as folders on disk or a calendar server.
/// Main thread only; no call waits for a disk, a server or another thread: what is not known yet is
/// reported as a change when it is. May be absent, fail and come back at any time; what it knew
/// when it failed may stay or go, as serves the user.
class CalendarSource {
 public:
  /// What the system lets this process do with the calendars that are there.
  enum class Reach {
    absent,     ///< there are none
    readable,   ///< at least one can be read
    writeOnly,  ///< none can be read, but one could be written
    closed,     ///< they can be neither read nor written
  };

  virtual ~CalendarSource() = default;

  /// Looks without opening any calendar. Quick; may be called before `start`.
  [[nodiscard]] virtual Reach reach() const = 0;

  /// Begins to read, when the user has allowed it; before, nothing is read and the lists below are
  /// empty. Not called twice without `stop` in between.
  virtual void start() = 0;
  /// Ends what `start` began: nothing is read or kept any more and the lists are empty; `start` may
  /// follow again. Does nothing when it was not started. Announces no change.
  virtual void stop() = 0;

  /// All calendars with events of this source, in a stable order.
  [[nodiscard]] virtual std::vector<platform::EventCalendar> calendars() const = 0;
  /// As `EventStore::events`. A window that was not asked for before may be answered with what is
  /// known of it; the rest follows with a change.
  [[nodiscard]] virtual std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& calendarIdentifiers) const = 0;
  /// As `EventStore::observeChanges`.
  [[nodiscard]] virtual Token observeChanges(std::function<void()> block) = 0;
};

}  // namespace valdrix::desktop
