#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "observation/Token.h"
#include "platform/Instant.h"
#include "view/Color.h"

namespace valdrix::platform {

/// Whether this program may read the user's events; only `fullAccess` lets it.
enum class EventAuthorization : std::int64_t {
  notDetermined = 0,
  restricted = 1,
  denied = 2,
  fullAccess = 3,
  writeOnly = 4,
};

/// One calendar of the user.
struct EventCalendar {
  /// Tells it from all others, also at the next start.
  std::string calendarIdentifier;
  std::string title;
  std::optional<view::Color> color{};
  /// The account that it belongs to.
  std::optional<std::string> sourceTitle{};
  bool operator==(const EventCalendar&) const = default;
};

/// One occurrence of an event. Its texts come from strangers.
struct Event {
  /// The same for all occurrences of one event; absent when it has none.
  std::optional<std::string> eventIdentifier{};
  std::optional<std::string> title{};
  Instant startDate{};
  /// Not before the start; the same for an event without length.
  Instant endDate{};
  bool isAllDay = false;
  bool hasRecurrenceRules = false;
  std::optional<EventCalendar> calendar{};
  bool operator==(const Event&) const = default;
};

/// The user's calendars. Main thread only, but for the completion of a request.
class EventStore {
 public:
  virtual ~EventStore() = default;

  /// Never asks the user.
  [[nodiscard]] virtual EventAuthorization authorizationStatus() const = 0;
  /// Asks the user for full access, unless the answer is known; the store decides whether there is
  /// something to see. `completion` may be called on any thread, later or at once.
  virtual void requestFullAccessToEvents(std::function<void(bool isGranted)> completion) = 0;

  /// All calendars that hold events, in the store's order.
  [[nodiscard]] virtual std::vector<EventCalendar> calendars() const = 0;
  /// The occurrences that overlap the time from `start` up to, but not including, `end`, in the
  /// calendars named; none when none is named. One that ends at `start` does not overlap, one
  /// without length that stands there does. In no particular order.
  [[nodiscard]] virtual std::vector<Event> events(
      Instant start, Instant end, const std::vector<std::string>& calendarIdentifiers) const = 0;

  /// Calls `block` on the main thread after calendars or events changed, whoever changed them; a
  /// burst of changes may give few calls.
  [[nodiscard]] virtual Token observeChanges(std::function<void()> block) = 0;
};

}  // namespace valdrix::platform
