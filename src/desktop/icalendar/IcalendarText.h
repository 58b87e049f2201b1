#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <QTimeZone>

#include "platform/EventStore.h"

namespace valdrix::desktop {

/// The events of one iCalendar text (RFC 5545): a file with any number of VCALENDARs, or bare
/// VEVENTs one after the other. Immutable, so any number of threads may read it.
///
/// The text is untrusted: whatever it holds, work and memory are bounded, a component that makes no
/// sense is left out, and all others stay.
class IcalendarText {
 public:
  /// Whether whoever wants an answer no longer does. It is asked every millisecond or so of work,
  /// on the thread that asked for the answer, and an empty one never. Once it says so, the answer
  /// comes at once and holds whatever was found until then. It is not asked while libical looks
  /// for the first occurrence of a rule that has none, which may take a second.
  using IsEnding = std::function<bool()>;

  /// Longer texts hold no events.
  static constexpr std::size_t maximumSize = std::size_t{64} << 20U;

  /// Never fails: a text without any readable event is an empty one.
  [[nodiscard]] static IcalendarText parse(std::string_view text, const IsEnding& isEnding = {});

  IcalendarText(IcalendarText&&) noexcept;
  IcalendarText& operator=(IcalendarText&&) noexcept;
  ~IcalendarText();

  [[nodiscard]] bool isEmpty() const;

  /// The occurrences that overlap the time from `start` up to `end`, one event each, without a
  /// calendar; edges as in `EventStore::events`. `eventIdentifier` is the event's UID. `local` is
  /// the zone of all-day and floating times. In no particular order; cancelled ones are left out.
  /// All occurrences of an event with a rule, additional dates or changed occurrences have
  /// recurrence rules.
  [[nodiscard]] std::vector<platform::Event> occurrences(platform::Instant start,
                                                         platform::Instant end,
                                                         const QTimeZone& local,
                                                         const IsEnding& isEnding = {}) const;

  /// The earliest start among the occurrences that end after `after`, or have no length and stand
  /// at or after it; nothing when there is none, now or ever. May be earlier than that, never
  /// later: a rule that is too costly to follow counts as having one at once.
  [[nodiscard]] std::optional<platform::Instant> nextStart(platform::Instant after,
                                                           const QTimeZone& local,
                                                           const IsEnding& isEnding = {}) const;

 private:
  class Events;
  explicit IcalendarText(std::unique_ptr<Events> events);
  std::unique_ptr<Events> events_;
};

}  // namespace valdrix::desktop
