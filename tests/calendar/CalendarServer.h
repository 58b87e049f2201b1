#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QDBusConnection>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantList>

#include "tests/session/PrivateBus.h"

namespace valdrix::tests {

/// A real calendar server without a screen, for a user of its own: this process's folders and
/// session bus are those of that user as long as this lives. The server starts when it is called.
/// The operations are another program's, and tell whether they worked.
class CalendarServer {
 public:
  CalendarServer();
  ~CalendarServer();
  CalendarServer(const CalendarServer&) = delete;
  CalendarServer& operator=(const CalendarServer&) = delete;

  /// Starts the bus, or starts it again.
  [[nodiscard]] bool startBus();
  PrivateBus& bus() { return *bus_; }

  /// Adds an entry to the registry, such as a calendar.
  bool addEntry(const QString& uid, const QString& keyFile);
  bool changeEntry(const QString& uid, const QString& keyFile);
  bool removeEntry(const QString& uid);
  /// The key file of a calendar of this computer.
  static QString calendar(const QString& name, const QString& more = {},
                          const QString& parent = "local-stub");

  /// Adds events, each given by the lines inside its VEVENT.
  bool add(const QString& calendar, const QStringList& events);
  /// Changes an event, or the occurrence of it that its RECURRENCE-ID names.
  bool change(const QString& calendar, const QString& event);
  bool remove(const QString& calendar, const QString& uid, const QString& occurrence = {});
  bool addZone(const QString& calendar, const QString& zone);

  /// Kills a program of the server: "Sources" or "Calendar".
  bool kill(const QString& kind);
  bool isRunning(const QString& kind) const;

 private:
  using Reply = std::optional<QVariantList>;

  void set(const QByteArray& name, const QString& value);
  [[nodiscard]] QString service(const QString& kind) const;
  Reply call(const QString& kind, const QString& path, const QString& interface,
             const QString& method, const QVariantList& arguments = {}) const;
  bool callEntry(const QString& uid, const QString& interface, const QString& method,
                 const QVariantList& arguments);
  bool callCalendar(const QString& calendar, const QString& method, const QVariantList& arguments);

  QTemporaryDir folder_;
  std::vector<std::pair<QByteArray, QByteArray>> variablesBefore_;
  QStringList services_;
  std::unique_ptr<PrivateBus> bus_;
  std::optional<QDBusConnection> connection_;
};

}  // namespace valdrix::tests
