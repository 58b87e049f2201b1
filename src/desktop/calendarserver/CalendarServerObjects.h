#pragma once

#include <atomic>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <QString>
#include <QStringList>
#include <QTimeZone>

#include "platform/EventStore.h"

namespace valdrix::desktop {

/// What a calendar of the calendar server holds of a span of time, as iCalendar texts. A value, so
/// that the main thread can fill it and another can do what takes time, which ends early, with
/// what was found until then, when `isEnding` becomes true or a piece of work has taken five
/// seconds of its thread's time.
class CalendarServerObjects {
 public:
  /// More objects are left out, and of more occurrences those that come later.
  static constexpr qsizetype maximumCount = 20000;

  CalendarServerObjects() = default;
  /// Takes time.
  CalendarServerObjects(const QStringList& texts, const std::atomic_bool& isEnding);

  /// The UIDs of events of which there may be more than what the texts said of them: overrides that
  /// lie outside of the span, or the master of an override.
  [[nodiscard]] QStringList incompleteUids() const;
  /// Puts all that there is of a UID in place of what was there.
  void complete(const QString& uid, const QString& text) { groups_[uid] = {{text}, true, {}}; }

  /// Names of time zones in the texts that this system does not know. To be called when all is
  /// complete. Takes time.
  [[nodiscard]] std::set<QString> findUnknownZones(const std::atomic_bool& isEnding);

  /// All occurrences that overlap the time from `start` up to `end`, the earliest first, without a
  /// calendar; `eventIdentifier` is `prefix` and the UID. `zones` are the VTIMEZONEs for the
  /// unknown zones by name, as far as there are. Takes time.
  [[nodiscard]] std::vector<platform::Event> occurrences(platform::Instant start,
                                                         platform::Instant end,
                                                         const QTimeZone& local,
                                                         const std::map<QString, QString>& zones,
                                                         const std::string& prefix,
                                                         const std::atomic_bool& isEnding) const;

 private:
  /// The objects of one UID.
  struct Group {
    QStringList texts;
    bool mayBeIncomplete = false;
    std::set<QString> unknownZones;
  };
  std::map<QString, Group> groups_;
};

}  // namespace valdrix::desktop
