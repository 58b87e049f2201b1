#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QTimer>

#include "desktop/session/SessionBus.h"
#include "observation/Token.h"
#include "platform/EventStore.h"

namespace valdrix::desktop {

/// Whether there is a calendar server on the session's bus, and which calendars it has. Main thread
/// only; never waits.
///
/// A server that does not run is started only if it has ever run for this user: one that was never
/// used has no calendars. Whoever starts it later is noticed.
class CalendarServerRegistry {
 public:
  struct Callbacks {
    /// The calendars, or what is known of one, may be others than before.
    std::function<void()> onChange;
    /// Another bus is there, so all that was opened is closed.
    std::function<void()> onJoin;
    /// A program of the server has started.
    std::function<void()> onStart;
    /// The program of the server with this unique name on the bus has ended.
    std::function<void(const QString& owner)> onEnd;
    /// The server did not say which calendars there are, or the program that knows them has ended.
    std::function<void()> onFailure;
  };

  /// `bus` outlives this.
  CalendarServerRegistry(SessionBus& bus, Callbacks callbacks);
  CalendarServerRegistry(const CalendarServerRegistry&) = delete;
  CalendarServerRegistry& operator=(const CalendarServerRegistry&) = delete;

  /// Whether it runs, or may be started.
  [[nodiscard]] bool isPresent() const;
  /// Asks for the calendars, now and whenever they change; before, no more is heard than which
  /// programs are on the bus.
  void start();
  /// Asks no more, and forgets what it heard.
  void stop();
  /// Asks once more, in vain while there is no server.
  void refresh();

  /// As last heard of, also when the server is gone.
  [[nodiscard]] const std::vector<platform::EventCalendar>& calendars() const { return calendars_; }
  /// Another text whenever a calendar that could not be opened is worth another try.
  [[nodiscard]] QString condition(const std::string& calendarIdentifier) const;

  /// The service that opens calendars; nothing while there is none.
  [[nodiscard]] std::optional<QString> factory() const;
  /// Whether a call may start the server.
  [[nodiscard]] bool mayStart() const { return hasRun_; }

 private:
  void join(QDBusConnection& connection);
  void ask(const char* question, QStringList& answer, std::function<void()> next);
  void handleOwner(const QString& name, const QString& oldOwner, const QString& newOwner);
  [[nodiscard]] std::optional<QString> service(const char* kind) const;
  void takeList(const QDBusMessage& reply);
  void watchChanges();

  SessionBus& bus_;
  Callbacks callbacks_;
  bool hasRun_;
  bool isBusKnown_ = false;
  bool isStarted_ = false;
  bool isListing_ = false;
  bool isListStale_ = false;
  QStringList activatable_;
  QStringList running_;
  std::vector<platform::EventCalendar> calendars_;
  std::map<std::string, QString> conditions_;
  /// Fires when the server has said that something is new. Made anew for each connection, while
  /// started; what is subscribed to ends with it.
  std::unique_ptr<QTimer> news_;
  /// Made anew for each connection; owns the calls on it.
  std::unique_ptr<QDBusServiceWatcher> services_;
  Token connections_;
};

}  // namespace valdrix::desktop
