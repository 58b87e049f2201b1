// org.freedesktop.login1 with one method, Session.SetBrightness, over a temporary class folder.
// Says "ready" once it owns its name, and "." for each call.

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace {

class Session : public QDBusVirtualObject {
 public:
  Session(QString behaviour, std::filesystem::path backlights)
      : behaviour_(std::move(behaviour)), backlights_(std::move(backlights)) {}

  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.interface() != "org.freedesktop.login1.Session" ||
        message.member() != "SetBrightness" || message.signature() != "ssu")
      return false;
    std::puts(".");
    std::fflush(stdout);
    if (behaviour_ == "hang") {
      message.setDelayedReply(true);
    } else if (behaviour_ == "deny") {
      connection.send(message.createErrorReply("org.freedesktop.DBus.Error.AccessDenied", "no"));
    } else {
      write(message.arguments());
      connection.send(message.createReply());
    }
    return true;
  }

 private:
  void write(const QVariantList& arguments) const {
    const auto folder = backlights_ / arguments[1].toString().toStdString();
    for (const auto* const file : {"brightness", "actual_brightness"})
      std::ofstream(folder / file) << arguments[2].toUInt() << '\n';
  }

  QString behaviour_;
  std::filesystem::path backlights_;
};

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const auto arguments = QCoreApplication::arguments();
  if (arguments.size() != 4) return 2;
  auto bus = QDBusConnection::connectToBus(arguments[1], "mock");
  Session session(arguments[2], arguments[3].toStdString());
  if (!bus.registerVirtualObject("/org/freedesktop/login1/session/auto", &session) ||
      !bus.registerService("org.freedesktop.login1"))
    return 1;
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}
