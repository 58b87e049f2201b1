#include "bench/desktop/BenchSession.h"

#include <QDir>
#include <QFile>

namespace valdrix::bench {

namespace {

// Short, so that the indicator is soon gone and the next press can be measured.
constexpr const char* preferences = "[General]\nhudDuration=0.4\n";

}  // namespace

BenchSession::BenchSession() {
  qputenv("HOME", folder_.path().toUtf8());
  qputenv("XDG_CONFIG_HOME", path("config").toUtf8());
  qputenv("XDG_CACHE_HOME", path("cache").toUtf8());
  qputenv("XDG_DATA_HOME", path("data").toUtf8());
  qputenv("VALDRIX_SYSFS", path("sys").toUtf8());
  // Nobody answers there: the measured programs must not reach the machine's own services.
  qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + path("no-system-bus").toUtf8());
  QDir().mkpath(path("config/valdrix"));
  QFile file(path("config/valdrix/valdrix.conf"));
  if (file.open(QIODevice::WriteOnly)) file.write(preferences);
}

bool BenchSession::start() {
  if (!sound_.start({{"speakers"}}) || !sound_.setVolume("speakers", {0.5}))
    missing_ = "pulseaudio";
  else if (sound_.adoptEnvironment(); !startBus())
    missing_ = "dbus-daemon";
  return missing_.empty();
}

bool BenchSession::startBus() {
  const auto address = "unix:path=" + path("bus").toStdString();
  bus_ = std::make_unique<tests::SpawnedProgram>(
      std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                               "--print-address", "--address=" + address},
      std::vector<std::string>{}, true);
  qputenv("DBUS_SESSION_BUS_ADDRESS", address.c_str());
  // The address is printed once it listens.
  return bus_->readLine().has_value();
}

}  // namespace valdrix::bench
