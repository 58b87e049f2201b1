#include "tests/support/SwayCompositor.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <poll.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace valdrix::tests {

namespace {

/// The compositor refuses to run as root.
constexpr uid_t ordinaryUser = 1000;

constexpr std::uint32_t runCommand = 0;
constexpr std::uint32_t subscribe = 2;
constexpr std::uint32_t getOutputs = 3;

/// Looks at `condition` anew each time `file` has something to read, for ten seconds at most.
bool awaitWith(int file, const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    const auto rest =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd readable{file, POLLIN, 0};
    if (rest.count() <= 0 || poll(&readable, 1, static_cast<int>(rest.count())) <= 0) return false;
    char news[4096];
    if (read(file, news, sizeof(news)) <= 0) return false;
  }
  return true;
}

}  // namespace

SwayCompositor::SwayCompositor(SwayCompositor* host, const std::string& settings) : host_(host) {
  QFile configuration(folder_.filePath(QStringLiteral("config")));
  if (configuration.open(QIODevice::WriteOnly))
    configuration.write(("xwayland disable\n"
                         "default_border none\n"
                         "default_floating_border none\n"
                         "focus_follows_mouse no\n"
                         "swaybg_command -\n"
                         "output HEADLESS-1 resolution 1500x1000\n"
                         "for_window [title=\"WL-\"] floating enable\n"
                         "exec touch " +
                         folder() + "/up\n" + settings + "\n")
                            .c_str());
  configuration.close();
  configuration.setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
  if (geteuid() == 0) (void)chown(folder_.path().toUtf8().constData(), ordinaryUser, ordinaryUser);
  start();
}

SwayCompositor::~SwayCompositor() { stop(); }

std::string SwayCompositor::socket(const char* pattern) const {
  const auto found =
      QDir(folder_.path()).entryList({QString::fromLatin1(pattern)}, QDir::System | QDir::Files);
  return found.isEmpty() ? std::string() : found.first().toStdString();
}

bool SwayCompositor::start() {
  std::vector<std::string> arguments;
  if (geteuid() == 0)
    arguments = {"setpriv", "--reuid=1000", "--regid=1000", "--clear-groups", "--pdeathsig=TERM"};
  arguments.insert(arguments.end(), {"sway", "-c", folder() + "/config"});
  std::vector<std::string> variables{"XDG_RUNTIME_DIR=" + folder(), "HOME=" + folder(),
                                     "WLR_RENDERER=pixman", "WLR_LIBINPUT_NO_DEVICES=1"};
  if (host_) {
    variables.insert(variables.end(),
                     {"WLR_BACKENDS=wayland", "WLR_WL_OUTPUTS=1",
                      "WAYLAND_DISPLAY=" + host_->folder() + '/' + host_->display()});
  } else {
    variables.emplace_back("WLR_BACKENDS=headless");
  }
  // It writes this file when it has read its configuration and begins to serve.
  const int changes = inotify_init1(IN_CLOEXEC);
  inotify_add_watch(changes, folder().c_str(), IN_CREATE | IN_CLOSE_WRITE);
  program_ = std::make_unique<SpawnedProgram>(arguments, variables);
  const bool isUp =
      awaitWith(changes, [&] { return QFileInfo::exists(folder_.filePath(QStringLiteral("up"))); });
  close(changes);
  display_ = socket("wayland-?");
  return isUp && !display_.empty() &&
         awaitOutputs([](const auto& names) { return !names.empty(); });
}

bool SwayCompositor::awaitOutputs(
    const std::function<bool(const std::vector<std::string>&)>& condition) {
  const int news = send(subscribe, R"(["output"])");
  const bool isMet = awaitWith(news, [&] { return condition(outputs()); });
  close(news);
  return isMet;
}

void SwayCompositor::stop() {
  program_.reset();
  // What one that was killed leaves behind.
  for (const auto* pattern : {"sway-ipc.*.sock", "wayland-?", "wayland-?.lock", "up"})
    if (const auto left = socket(pattern); !left.empty())
      QFile::remove(folder_.filePath(QString::fromStdString(left)));
}

void SwayCompositor::enter() const {
  qputenv("XDG_RUNTIME_DIR", folder().c_str());
  qputenv("WAYLAND_DISPLAY", display_.c_str());
}

QImage SwayCompositor::screenshot() const {
  const auto file = folder() + "/screen.ppm";
  SpawnedProgram grim({"grim", "-t", "ppm", file},
                      {"XDG_RUNTIME_DIR=" + folder(), "WAYLAND_DISPLAY=" + display_});
  return grim.wait() == 0 ? QImage(QString::fromStdString(file)) : QImage();
}

// A question is a magic word, the length of the text, its kind and the text; so is the answer.
int SwayCompositor::send(std::uint32_t kind, const std::string& words) const {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const auto path = folder() + '/' + socket("sway-ipc.*.sock");
  std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
  const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) {
    const std::uint32_t header[] = {static_cast<std::uint32_t>(words.size()), kind};
    QByteArray question("i3-ipc");
    question.append(reinterpret_cast<const char*>(header), sizeof(header)).append(words.c_str());
    (void)::send(connection, question.constData(), static_cast<std::size_t>(question.size()),
                 MSG_NOSIGNAL);
  }
  return connection;
}

QByteArray SwayCompositor::ask(std::uint32_t kind, const std::string& words) const {
  const int connection = send(kind, words);
  QByteArray answer;
  char head[14] = {};
  if (recv(connection, head, sizeof(head), MSG_WAITALL) == sizeof(head)) {
    std::uint32_t length = 0;
    std::memcpy(&length, head + 6, sizeof(length));
    answer.resize(static_cast<qsizetype>(length));
    (void)recv(connection, answer.data(), length, MSG_WAITALL);
  }
  close(connection);
  return answer;
}

bool SwayCompositor::command(const std::string& words) {
  const auto answer = QJsonDocument::fromJson(ask(runCommand, words)).array();
  return !answer.isEmpty() && answer.first().toObject()[QLatin1String("success")].toBool();
}

std::vector<std::string> SwayCompositor::outputs() {
  std::vector<std::string> names;
  for (const auto output : QJsonDocument::fromJson(ask(getOutputs, {})).array())
    names.push_back(output.toObject()[QLatin1String("name")].toString().toStdString());
  return names;
}

std::string SwayCompositor::addOutput() {
  const auto before = outputs();
  (void)command("create_output");
  std::string added;
  (void)awaitOutputs([&](const auto& names) {
    for (const auto& name : names)
      if (std::ranges::find(before, name) == before.end()) added = name;
    return !added.empty();
  });
  return added;
}

void SwayCompositor::resizeOutput(const std::string& name, int width, int height) {
  (void)host_->command("[title=\"" + name + "$\"] resize set " + std::to_string(width) + " px " +
                       std::to_string(height) + " px");
}

void SwayCompositor::removeOutput(const std::string& name) {
  (void)host_->command("[title=\"" + name + "$\"] kill");
  (void)awaitOutputs(
      [&](const auto& names) { return std::ranges::find(names, name) == names.end(); });
}

}  // namespace valdrix::tests
