#pragma once

#include <vector>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace valdrix::tests {

/// A program on the session's bus, under a name of its own, that notes the calls it gets and
/// answers each with nothing.
class RecordingService : private QDBusVirtualObject {
 public:
  explicit RecordingService(const char* name)
      : connection_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
    connection_.registerVirtualObject("/", this, QDBusConnection::SubPath);
    connection_.registerService(name);
  }
  ~RecordingService() override { QDBusConnection::disconnectFromBus(connection_.name()); }

  std::vector<QDBusMessage> calls;

 private:
  [[nodiscard]] QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    calls.push_back(message);
    return !message.isReplyRequired() || connection.send(message.createReply());
  }
  QDBusConnection connection_;
};

}  // namespace valdrix::tests
