#pragma once

#include <functional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantList>

namespace valdrix::desktop {

/// A method of an object on the message bus.
struct CalendarServerCall {
  QString service;
  QString path;
  QString interface;
  QString method;
  QVariantList arguments{};
  /// Whether the bus may start the service for it.
  bool mayStart = false;

  /// Sends it without waiting. `onReply` is called with the answer or the error, unless `owner` is
  /// gone by then; main thread.
  void send(const QDBusConnection& connection, QObject& owner,
            std::function<void(const QDBusMessage&)> onReply) const;
  /// Sends it and does not listen for an answer.
  void send(const QDBusConnection& connection) const;

 private:
  [[nodiscard]] QDBusMessage message() const;
};

}  // namespace valdrix::desktop
