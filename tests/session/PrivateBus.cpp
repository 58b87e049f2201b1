#include "tests/session/PrivateBus.h"

#include <signal.h>

#include <QFile>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

PrivateBus::PrivateBus(const QString& services) {
  const QString address = "unix:path=" + folder_.filePath("bus");
  QFile file(folder_.filePath("bus.conf"));
  if (file.open(QIODevice::WriteOnly))
    file.write(QStringLiteral("<busconfig><listen>%1</listen>%2"
                              "<policy context=\"default\"><allow user=\"*\"/>"
                              "<allow send_destination=\"*\"/>"
                              "<allow receive_sender=\"*\"/>"
                              "<allow own=\"*\"/></policy></busconfig>")
                   .arg(address, services.isEmpty() ? QString()
                                                    : "<servicedir>" + services + "</servicedir>")
                   .toUtf8());
  // Some programs refuse to run as root and run as another user.
  QFile::setPermissions(folder_.path(), QFile::permissions(folder_.path()) | QFile::ExeOther);
  qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
}

PrivateBus::~PrivateBus() {
  kill();
  qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

bool PrivateBus::start() {
  QFile::remove(folder_.filePath("bus"));  // a killed daemon leaves its socket
  daemon_ = std::make_unique<ChildProcess>(
      "dbus-daemon", QStringList{"--config-file=" + folder_.filePath("bus.conf"), "--nofork",
                                 "--nopidfile", "--print-address"});
  // The address is printed once it listens.
  return waitFor([this] { return daemon_->process().canReadLine(); });
}

void PrivateBus::kill() {
  if (!daemon_) return;
  setHanging(false);
  daemon_->kill();
  daemon_.reset();
}

void PrivateBus::setHanging(bool hangs) {
  if (daemon_ && daemon_->isRunning())
    ::kill(static_cast<pid_t>(daemon_->pid()), hangs ? SIGSTOP : SIGCONT);
}

}  // namespace valdrix::tests
