#include "tests/session/PrivateBus.h"

#include <signal.h>

#include <QFile>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

PrivateBus::PrivateBus(const QString& services)
    : services_(services.isEmpty() ? QString() : "<servicedir>" + services + "</servicedir>") {
  // Some programs refuse to run as root and run as another user.
  QFile::setPermissions(folder_.path(), QFile::permissions(folder_.path()) | QFile::ExeOther);
  qputenv("DBUS_SESSION_BUS_ADDRESS", address().toUtf8());
}

QString PrivateBus::address() const { return "unix:path=" + folder_.filePath("bus"); }

void PrivateBus::configure(int mostConnections) {
  QFile file(folder_.filePath("bus.conf"));
  if (file.open(QIODevice::WriteOnly))
    file.write(QStringLiteral("<busconfig><listen>%1</listen>%2"
                              "<policy context=\"default\"><allow user=\"*\"/>"
                              "<allow send_destination=\"*\"/>"
                              "<allow receive_sender=\"*\"/>"
                              "<allow own=\"*\"/></policy>"
                              "<limit name=\"max_completed_connections\">%3</limit></busconfig>")
                   .arg(address(), services_)
                   .arg(mostConnections)
                   .toUtf8());
}

PrivateBus::~PrivateBus() {
  kill();
  qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

bool PrivateBus::start() { return start(1000); }

bool PrivateBus::startFull() { return start(0); }

bool PrivateBus::start(int mostConnections) {
  configure(mostConnections);
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
