#include "desktop/session/SessionBus.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <QByteArray>

namespace valdrix::desktop {

namespace {

// After so many failures in a row a bus whose socket is watched is left until the socket changes.
// It takes a new bus a moment from making its socket to answering.
constexpr int mostWatchedFailures = 7;
constexpr double firstDelay = 0.05;
constexpr double longestDelay = 60;

std::string environmentValue(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

/// Where the session's bus listens; empty when nothing says so. Addresses that would start a
/// program count as none.
std::string sessionBusAddress() {
  auto address = environmentValue("DBUS_SESSION_BUS_ADDRESS");
  const auto folder = environmentValue("XDG_RUNTIME_DIR");
  if (address.empty() && !folder.empty()) address = "unix:path=" + folder + "/bus";
  const bool startsPrograms = address.find("autolaunch:") != std::string::npos ||
                              address.find("unixexec:") != std::string::npos;
  return startsPrograms ? std::string() : address;
}

/// The file of the socket that an address begins with, if it is one.
std::optional<std::string> socketPath(const std::string& address) {
  constexpr std::string_view prefix = "unix:path=";
  if (!address.starts_with(prefix)) return std::nullopt;
  const auto value = address.substr(prefix.size(), address.find_first_of(",;") - prefix.size());
  return QByteArray::fromPercentEncoding(QByteArray::fromStdString(value)).toStdString();
}

QString freshConnectionName() {
  static int number = 0;
  return QStringLiteral("valdrix-session-%1").arg(++number);
}

}  // namespace

/// One try to connect, on a thread of its own, because a bus that hangs would keep the caller for
/// as long as it likes.
class SessionBus::Attempt {
 public:
  /// `onDone` is submitted to `runLoop`, unless the attempt was abandoned before.
  static std::shared_ptr<Attempt> start(const std::string& address, platform::RunLoop& runLoop,
                                        std::function<void()> onDone) {
    auto attempt = std::make_shared<Attempt>();
    attempt->runLoop_ = &runLoop;
    attempt->onDone_ = std::move(onDone);
    std::thread([attempt, address = QString::fromStdString(address), name = freshConnectionName()] {
      attempt->finish(QDBusConnection::connectToBus(address, name));
    }).detach();
    return attempt;
  }

  [[nodiscard]] bool wait(double seconds) {
    std::unique_lock lock(mutex_);
    return done_.wait_for(lock, std::chrono::duration<double>(seconds),
                          [this] { return connection_.has_value(); });
  }

  [[nodiscard]] std::optional<QDBusConnection> result() {
    const std::lock_guard lock(mutex_);
    return connection_;
  }

  void abandon() {
    const std::lock_guard lock(mutex_);
    runLoop_ = nullptr;
    if (connection_) QDBusConnection::disconnectFromBus(connection_->name());
  }

 private:
  void finish(const QDBusConnection& connection) {
    const std::lock_guard lock(mutex_);
    if (!runLoop_) return QDBusConnection::disconnectFromBus(connection.name());
    connection_ = connection;
    runLoop_->async(onDone_);
    done_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable done_;
  platform::RunLoop* runLoop_ = nullptr;
  std::function<void()> onDone_;
  std::optional<QDBusConnection> connection_;
};

SessionBus::SessionBus(platform::RunLoop& runLoop)
    : runLoop_(runLoop), address_(sessionBusAddress()) {
  if (address_.empty()) return;
  loss_.setSingleShot(true);
  QObject::connect(&loss_, &QTimer::timeout, &loss_, [this] { handleLoss(); });
  if (const auto path = socketPath(address_)) {
    socketWatch_ = std::make_unique<FileWatch>(*path, [this] {
      failures_ = 0;
      if (!connection_ && !attempt_) retryLater();
    });
  }
  connect();
}

SessionBus::~SessionBus() {
  if (attempt_) attempt_->abandon();
  if (connection_) QDBusConnection::disconnectFromBus(connection_->name());
}

bool SessionBus::waitUntilConnected(double seconds) {
  if (attempt_ && attempt_->wait(seconds)) finishAttempt();
  return connection_.has_value();
}

Token SessionBus::observeConnections(std::function<void(QDBusConnection&)> block) {
  const auto observer = observers_.insert(
      observers_.end(),
      std::make_shared<const std::function<void(QDBusConnection&)>>(std::move(block)));
  return Token([this, observer] { observers_.erase(observer); });
}

void SessionBus::connect() {
  retry_.reset();
  attempt_ = Attempt::start(address_, runLoop_, [this] { finishAttempt(); });
}

void SessionBus::finishAttempt() {
  // Comes twice when somebody waited for the attempt.
  if (!attempt_ || !attempt_->result()) return;
  auto connection = *std::exchange(attempt_, nullptr)->result();
  // The library's own signal of a lost connection wants a slot by name: a timer has one.
  connection.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
                     "Disconnected", &loss_, SLOT(start()));
  if (!connection.isConnected()) {
    QDBusConnection::disconnectFromBus(connection.name());
    return retryLater();
  }
  failures_ = 0;
  connection_ = connection;
  tellObservers();
}

void SessionBus::tellObservers() {
  // An observer may end itself or others.
  const std::vector<std::weak_ptr<const std::function<void(QDBusConnection&)>>> all(
      observers_.begin(), observers_.end());
  auto connection = *connection_;
  for (const auto& observer : all)
    if (const auto block = observer.lock()) (*block)(connection);
}

void SessionBus::handleLoss() {
  if (!connection_) return;
  const auto name = connection_->name();
  connection_.reset();
  QDBusConnection::disconnectFromBus(name);
  retryLater();
}

void SessionBus::retryLater() {
  if (socketWatch_ && failures_ >= mostWatchedFailures) return;
  const double delay = std::min(firstDelay * std::exp2(failures_), longestDelay);
  failures_ = std::min(failures_ + 1, 100);
  retry_ = runLoop_.scheduleTimer(delay, false, [this] { connect(); });
}

}  // namespace valdrix::desktop
