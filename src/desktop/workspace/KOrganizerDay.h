#pragma once

#include <memory>

#include <QDate>
#include <QTimer>

#include "desktop/session/SessionBus.h"

namespace valdrix::desktop {

/// Tells KOrganizer over the bus which day to show: on its command line it takes none. While it is
/// only starting it is told again, for half a minute at most; that it can be told is no event on
/// the bus.
class KOrganizerDay {
 public:
  /// `bus` outlives this.
  explicit KOrganizerDay(SessionBus& bus);

  /// In place of a day that it could not be told yet. Returns at once; without a bus nothing
  /// happens.
  void show(QDate day);

 private:
  void tell();

  SessionBus& bus_;
  QDate day_;
  int attemptsLeft_ = 0;
  QTimer nextAttempt_;
};

}  // namespace valdrix::desktop
