#include "tests/display/SystemBus.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QTemporaryDir>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

class BusAddress : public testing::Environment {
 public:
  void SetUp() override {
    folder_ = std::make_unique<QTemporaryDir>();
    std::filesystem::permissions(folder_->path().toStdString(), std::filesystem::perms(0755));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address().toUtf8());
    // The D-Bus library reads the variable once, and never while the test is not quite root.
    QDBusConnection::connectToBus(QDBusConnection::SystemBus, "first");
    QDBusConnection::disconnectFromBus("first");
  }
  void TearDown() override { folder_.reset(); }

  [[nodiscard]] QString address() const { return "unix:path=" + folder_->filePath("socket"); }
  [[nodiscard]] QString configuration() const { return folder_->filePath("bus.conf"); }

 private:
  std::unique_ptr<QTemporaryDir> folder_;
};

const auto* const bus = static_cast<BusAddress*>(testing::AddGlobalTestEnvironment(new BusAddress));

}  // namespace

void SystemBus::start() {
  std::ofstream(bus->configuration().toStdString())
      << "<busconfig><type>custom</type><listen>" << bus->address().toStdString()
      << "</listen><auth>EXTERNAL</auth><policy context='default'><allow user='*'/><allow own='*'/>"
         "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
         "</policy></busconfig>";
  daemon_ = std::make_unique<ChildProcess>(
      "dbus-daemon",
      QStringList{"--nofork", "--print-address", "--config-file=" + bus->configuration()});
  // It prints its address once it listens.
  ASSERT_TRUE(waitFor([&] { return daemon_->process().bytesAvailable() > 0; }));
}

void SystemBus::startLogin1(const QString& behaviour, const QString& backlights) {
  login1_.reset();
  login1_ = std::make_unique<ChildProcess>(LOGIN1_MOCK,
                                           QStringList{bus->address(), behaviour, backlights});
  login1Output_.clear();
  ASSERT_TRUE(waitFor([&] {
    login1Output_ += login1_->process().readAllStandardOutput();
    return login1Output_.contains("ready");
  }));
}

int SystemBus::login1Calls() {
  login1_->process().waitForReadyRead(0);
  login1Output_ += login1_->process().readAllStandardOutput();
  return static_cast<int>(login1Output_.count('.'));
}

}  // namespace valdrix::tests
