#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QString>
#include <QStringList>

#include "platform/EventStore.h"
#include "view/Color.h"

namespace valdrix::desktop {

/// One entry of the calendar server's registry: an account, a calendar, an address book or anything
/// else, as its key file (of the desktop entry kind) describes it.
struct CalendarServerEntry {
  std::string uid;
  std::string displayName;
  /// The entry that this one belongs to; empty when there is none.
  std::string parent;
  bool isEnabled = true;
  bool isCalendar = false;
  std::optional<view::Color> color{};

  /// Never fails: what a key file does not say stays as above. Of translated names the one that
  /// comes first in `languages` ("fr_FR", "fr") counts.
  [[nodiscard]] static CalendarServerEntry parse(std::string uid, const QString& keyFile,
                                                 const QStringList& languages);
};

/// The calendars among `entries` that are enabled, like all that they belong to, whether or not a
/// calendar program has them ticked. In the order of accounts, names and identifiers.
[[nodiscard]] std::vector<platform::EventCalendar> calendarsAmong(
    const std::vector<CalendarServerEntry>& entries);

}  // namespace valdrix::desktop
