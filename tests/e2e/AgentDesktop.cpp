#include "tests/e2e/AgentDesktop.h"

#include <cmath>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

constexpr std::uint64_t maxBrightness = 960;

}  // namespace

AgentDesktop::AgentDesktop(Services services)
    : keys(QSize(1512, 982)), background(keys.display()), sharesBus_(services.sharesBus) {
  sysfs.addBacklight(backlight, "raw", "", maxBrightness);
  sysfs.setBrightness(backlight, maxBrightness / 2);
  if (services.hasCompositor) {
    EXPECT_TRUE(display().startCompositor());
  }
  if (services.hasSound) {
    EXPECT_TRUE(sound.start({{.name = sink}}));
    EXPECT_TRUE(sound.setVolume(sink, {0.5, 0.5}));
  }
  if (services.hasBus && !sharesBus_) {
    bus = std::make_unique<PrivateBus>();
    EXPECT_TRUE(bus->start());
  }
}

AgentDesktop::~AgentDesktop() {
  if (isAgentRunning()) {
    EXPECT_EQ(endAgent(), 0);
  }
}

QProcessEnvironment AgentDesktop::environment() const {
  auto environment = QProcessEnvironment::systemEnvironment();
  const auto add = [&](const QString& variable) {
    environment.insert(variable.section('=', 0, 0), variable.section('=', 1));
  };
  for (const auto& variable : sound.variables()) add(QString::fromStdString(variable));
  home.enter(environment);
  environment.insert("DISPLAY",
                     QString::fromStdString(const_cast<X11KeyDesk&>(keys).display().name()));
  environment.insert("VALDRIX_SYSFS", QString::fromStdString(sysfs.root().string()));
  environment.remove("WAYLAND_DISPLAY");
  environment.remove("QT_QPA_PLATFORM");
  if (!bus && !sharesBus_)
    environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.file("bus"));
  return environment;
}

bool AgentDesktop::startAgent() {
  agent_ = std::make_unique<ChildProcess>(VALDRIX_PROGRAM, QStringList{}, environment());
  // The keys are taken a moment after the panel is there.
  const auto hasKeys = [this] {
    return status()["mediaKeys"].toObject()["isTapInstalled"].toBool();
  };
  return awaitPixel(inNotch, isBlack) && (!(bus || sharesBus_) || waitFor(hasKeys));
}

int AgentDesktop::endAgent() {
  auto& process = agent_->process();
  process.terminate();
  if (!process.waitForFinished(20000)) {
    process.kill();
    return -1;
  }
  return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

ChildProcess::Result AgentDesktop::command(const QStringList& words) const {
  return ChildProcess::run(VALDRIX_PROGRAM, words, environment());
}

std::unique_ptr<ChildProcess> AgentDesktop::launch(const QStringList& words) const {
  return std::make_unique<ChildProcess>(VALDRIX_PROGRAM, words, environment());
}

QJsonObject AgentDesktop::status() const {
  return QJsonDocument::fromJson(command({"status"}).output.toUtf8()).object();
}

QString AgentDesktop::keyState(const QString& word) const {
  for (const auto& key : status()["mediaKeys"].toObject()["keys"].toArray())
    if (key.toObject()["key"] == word) return key.toObject()["state"].toString();
  return {};
}

QString AgentDesktop::presentation() const {
  return status()["notch"].toObject()["presentation"].toString();
}

bool AgentDesktop::awaitPresentation(const QString& wanted) {
  return waitFor([&] { return presentation() == wanted; });
}

bool AgentDesktop::awaitPixel(QPoint at, const std::function<bool(QRgb)>& condition) {
  return waitFor([&] { return condition(pixel(at)); });
}

bool AgentDesktop::awaitVolume(double volume) {
  return waitFor([&] {
    const auto volumes = sound.volumes(sink);
    return !volumes.empty() && std::abs(volumes[0] - volume) < 0.001;
  });
}

QString AgentDesktop::preferencesFile() const { return home.file("config/valdrix/valdrix.conf"); }

void AgentDesktop::setPreference(const char* key, const char* value) const {
  QDir().mkpath(home.file("config/valdrix"));
  QFile file(preferencesFile());
  if (file.open(QIODevice::Append)) file.write(QByteArray(key) + '=' + value + '\n');
}

}  // namespace valdrix::tests
