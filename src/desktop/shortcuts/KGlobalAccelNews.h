#pragma once

#include <functional>
#include <memory>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

#include "desktop/session/SessionBus.h"
#include "observation/Token.h"

namespace valdrix::desktop {

/// Whether kglobalaccel runs, and what it tells of this program's shortcuts and of changes to
/// others'.
class KGlobalAccelNews final : public QObject {
  Q_OBJECT

 public:
  struct Handlers {
    /// The service has come, gone, or is another process.
    std::function<void()> ownerChanged;
    /// It sent a signal: `yourShortcutsChanged`, or one of this program's component.
    std::function<void(const QDBusMessage&)> signalled;
  };

  /// `bus` outlives this. No handler is called before this is constructed.
  KGlobalAccelNews(SessionBus& bus, Handlers handlers);

  [[nodiscard]] bool isPresent() const { return !owner_.isEmpty(); }

 private Q_SLOTS:
  void take(const QDBusMessage& message);
  void lose();

 private:
  void join(QDBusConnection& connection);
  void askForOwner(const QDBusConnection& connection);
  void setOwner(const QString& owner);

  Handlers handlers_;
  QString owner_;  ///< by its unique name on the bus; empty without one
  std::unique_ptr<QDBusServiceWatcher> watcher_;
  Token connections_;
};

}  // namespace valdrix::desktop
