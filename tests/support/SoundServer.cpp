#include "tests/support/SoundServer.h"

#include <cmath>
#include <csignal>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <sys/socket.h>
#include <sys/un.h>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

constexpr double fullVolume = 65536;

// They would lead a client elsewhere.
constexpr const char* overridingVariables[] = {"PULSE_SERVER", "PULSE_RUNTIME_PATH", "PULSE_SINK"};

QString text(const std::string& string) { return QString::fromStdString(string); }

QStringList nullSink(const SoundServer::Sink& sink) {
  return {"module-null-sink", "sink_name=" + text(sink.name),
          "channels=" + QString::number(sink.channels)};
}

}  // namespace

SoundServer::SoundServer(SoundServerKind kind) : kind_(kind) {}

SoundServer::~SoundServer() { stop(); }

bool SoundServer::start(const std::vector<Sink>& sinks) {
  // Servers that were killed leave theirs behind.
  for (const char* socket : {"bus", "pipewire-0", "pulse/native"})
    QFile::remove(folder_.filePath(socket));
  if (kind_ == SoundServerKind::pulseAudio)
    startPulseAudio();
  else
    startPipeWire();
  if (!waitFor([this] { return isReady(); })) return false;
  for (const Sink& sink : sinks)
    if (!addSink(sink)) return false;
  return sinks.empty() || setDefaultSink(sinks.front().name);
}

// PipeWire's server answers before the session manager is there, which alone names a default.
bool SoundServer::isReady() {
  const auto output = pactl({"get-default-sink"});
  return output && !output->contains("@DEFAULT_SINK@");
}

void SoundServer::startPulseAudio() {
  programs_.push_back(
      spawn({"pulseaudio", "-n", "--system=no", "--daemonize=no", "--exit-idle-time=-1",
             "--use-pid-file=yes", "-L", "module-native-protocol-unix auth-anonymous=1"}));
}

// The session manager needs a bus, and the server refuses clients until the daemon is there.
void SoundServer::startPipeWire() {
  programs_.push_back(spawn({"dbus-daemon", "--session", "--nofork", "--nopidfile",
                             "--address=unix:path=" + folder_.filePath("bus").toStdString()}));
  programs_.push_back(spawn({"pipewire"}));
  if (!waitForSocket("bus") || !waitForSocket("pipewire-0")) return;
  startSessionManager();
  programs_.push_back(spawn({"pipewire-pulse"}));
}

// Its Bluetooth part ends the whole program where no login manager runs; an empty file of the same
// name as the one that enables it takes that one's place.
void SoundServer::startSessionManager() {
  const QString folder = folder_.filePath("config/wireplumber/bluetooth.lua.d");
  QDir().mkpath(folder);
  QFile(folder + "/90-enable-all.lua").open(QIODevice::WriteOnly);
  sessionManager_ = spawn({"wireplumber"});
}
void SoundServer::stopSessionManager() { sessionManager_.reset(); }

void SoundServer::signal(int number) const {
  for (const auto& program : programs_) ::kill(program->pid(), number);
}

void SoundServer::stop() {
  resume();
  stopSessionManager();
  while (!programs_.empty()) programs_.pop_back();
}

void SoundServer::kill() {
  if (sessionManager_) ::kill(sessionManager_->pid(), SIGKILL);
  signal(SIGKILL);
  for (const auto& program : programs_) program->wait();
  stop();
}

std::vector<std::string> SoundServer::variables() const {
  return {"XDG_RUNTIME_DIR=" + folder_.path().toStdString(),
          "PULSE_COOKIE=" + folder_.filePath("cookie").toStdString()};
}

void SoundServer::adoptEnvironment() const {
  for (const char* overriding : overridingVariables) qunsetenv(overriding);
  for (const auto& variable : variables()) {
    const auto equals = variable.find('=');
    qputenv(variable.substr(0, equals).c_str(),
            QByteArray::fromStdString(variable.substr(equals + 1)));
  }
}

std::unique_ptr<SpawnedProgram> SoundServer::spawn(std::vector<std::string> arguments) const {
  const std::string folder = folder_.path().toStdString();
  auto own = variables();
  own.insert(own.end(), {"HOME=" + folder, "XDG_CONFIG_HOME=" + folder + "/config",
                         "XDG_STATE_HOME=" + folder + "/state",
                         "DBUS_SESSION_BUS_ADDRESS=unix:path=" + folder + "/bus"});
  return std::make_unique<SpawnedProgram>(std::move(arguments), std::move(own));
}

// The file is there a moment before anybody listens, and whoever knocks then gives up for good.
bool SoundServer::waitForSocket(const QString& name) const {
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  const auto path = folder_.filePath(name).toStdString();
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  return waitFor([&] {
    const int knocking = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    const bool isOpen = connect(knocking, generic, sizeof(address)) == 0;
    close(knocking);
    return isOpen;
  });
}

// Not by QProcess: it makes its child inside this process's memory, and the thread sanitizer then
// takes what the child does for this process and overlooks its locks from there on.
std::optional<QString> SoundServer::pactl(const QStringList& arguments) const {
  std::vector<std::string> command{
      "pactl", "--server=unix:" + folder_.filePath("pulse/native").toStdString()};
  for (const QString& argument : arguments) command.push_back(argument.toStdString());
  SpawnedProgram client(std::move(command), variables(), true);
  QString output;
  while (const auto line = client.readLine()) output += text(*line) + '\n';
  if (client.wait() != 0) return std::nullopt;
  return output;
}

bool SoundServer::addSink(const Sink& sink) {
  return pactl(QStringList{"load-module"} + nullSink(sink)) &&
         waitFor([&] { return hasSink(sink.name); });
}

bool SoundServer::removeSink(const std::string& name) {
  const auto modules = pactl({"list", "short", "modules"}).value_or(QString());
  const QRegularExpression line("^(\\d+)\\s[^\\n]*sink_name=" + text(name) + "(\\s|$)",
                                QRegularExpression::MultilineOption);
  const auto match = line.match(modules);
  return match.hasMatch() && pactl({"unload-module", match.captured(1)}) &&
         waitFor([&] { return !hasSink(name); });
}

bool SoundServer::setDefaultSink(const std::string& name) {
  return pactl({"set-default-sink", text(name)}) &&
         waitFor([&] { return defaultSink() == text(name); });
}

bool SoundServer::setVolume(const std::string& sink, const std::vector<double>& volumes) {
  QStringList arguments{"set-sink-volume", text(sink)};
  for (const double volume : volumes)
    arguments << QString::number(std::lround(volume * fullVolume));
  return pactl(arguments).has_value();
}

bool SoundServer::setMuted(const std::string& sink, bool isMuted) {
  return pactl({"set-sink-mute", text(sink), isMuted ? "1" : "0"}).has_value();
}

QString SoundServer::defaultSink() {
  return pactl({"get-default-sink"}).value_or(QString()).trimmed();
}

bool SoundServer::hasSink(const std::string& name) {
  return pactl({"get-sink-volume", text(name)}).has_value();
}

std::vector<double> SoundServer::volumes(const std::string& sink) {
  static const QRegularExpression channel(":\\s+(\\d+) /");
  const auto output = pactl({"get-sink-volume", text(sink)}).value_or(QString());
  std::vector<double> volumes;
  for (auto match = channel.globalMatch(output); match.hasNext();)
    volumes.push_back(match.next().captured(1).toInt() / fullVolume);
  return volumes;
}

bool SoundServer::isMuted(const std::string& sink) {
  return pactl({"get-sink-mute", text(sink)}).value_or(QString()).contains("yes");
}

}  // namespace valdrix::tests
