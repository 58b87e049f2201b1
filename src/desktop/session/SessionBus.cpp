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

namespace valdrix::desktop {

namespace {

constexpr int longestSilence = 1000;  // milliseconds
// After so many failures in a row a bus that is not there is left until its socket's file changes.
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

QString freshConnectionName() {
  static int number = 0;
  return QStringLiteral("valdrix-session-%1").arg(++number);
}

}  // namespace

/// One try to connect, on a thread of its own. The library would wait for a bus that hangs for as
/// long as it likes, and end the program when that takes nobody in; so joining is tried first
/// without it.
class SessionBus::Attempt {
 public:
  /// `onDone` is submitted to `runLoop`, unless the attempt was abandoned before.
  static std::shared_ptr<Attempt> start(const std::string& address, platform::RunLoop& runLoop,
                                        std::function<void()> onDone) {
    auto attempt = std::make_shared<Attempt>();
    attempt->runLoop_ = &runLoop;
    attempt->onDone_ = std::move(onDone);
    std::thread([attempt, address, name = freshConnectionName()] {
      const auto state = BusSocket(address).probe(longestSilence);
      const bool answers = state == BusSocket::State::answering;
      attempt->finish(state,
                      answers ? QDBusConnection::connectToBus(QString::fromStdString(address), name)
                              : QDBusConnection(name));
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

  /// What stood at the address; once there is a result.
  [[nodiscard]] BusSocket::State state() {
    const std::lock_guard lock(mutex_);
    return state_;
  }

  void abandon() {
    const std::lock_guard lock(mutex_);
    runLoop_ = nullptr;
    if (connection_) QDBusConnection::disconnectFromBus(connection_->name());
  }

 private:
  void finish(BusSocket::State state, const QDBusConnection& connection) {
    const std::lock_guard lock(mutex_);
    state_ = state;
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
  BusSocket::State state_ = BusSocket::State::absent;
};

SessionBus::SessionBus(platform::RunLoop& runLoop)
    : runLoop_(runLoop), address_(sessionBusAddress()) {
  if (address_.empty()) return;
  loss_.setSingleShot(true);
  QObject::connect(&loss_, &QTimer::timeout, &loss_, [this] { handleLoss(); });
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

void SessionBus::watchSocket() {
  const auto path = BusSocket(address_).path();
  if (socketWatch_ || !path) return;
  socketWatch_ = std::make_unique<FileWatch>(*path, [this] {
    failures_ = 0;
    if (!attempt_) retryLater(BusSocket::State::absent);
  });
}

void SessionBus::connect() {
  retry_.reset();
  attempt_ = Attempt::start(address_, runLoop_, [this] { finishAttempt(); });
}

void SessionBus::finishAttempt() {
  // Comes twice when somebody waited for the attempt.
  if (!attempt_ || !attempt_->result()) return;
  const auto attempt = std::exchange(attempt_, nullptr);
  auto connection = *attempt->result();
  // The library's own signal of a lost connection wants a slot by name: a timer has one.
  connection.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
                     "Disconnected", &loss_, SLOT(start()));
  if (!connection.isConnected()) {
    QDBusConnection::disconnectFromBus(connection.name());
    return retryLater(attempt->state());
  }
  failures_ = 0;
  connection_ = connection;
  // The folder of the socket is a busy place; who is connected need not be woken by it.
  socketWatch_.reset();
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
  retryLater(BusSocket::State::absent);
}

void SessionBus::retryLater(BusSocket::State state) {
  // Not before the first failure: it takes the kernel 20 ms to end a watch. A bus that came before
  // the watch began is found by the next attempt.
  watchSocket();
  const bool isToldOfChanges = socketWatch_ && state == BusSocket::State::absent;
  if (isToldOfChanges && failures_ >= mostWatchedFailures) return;
  const double delay = std::min(firstDelay * std::exp2(failures_), longestDelay);
  failures_ = std::min(failures_ + 1, 100);
  retry_ = runLoop_.scheduleTimer(delay, false, [this] { connect(); });
}

}  // namespace valdrix::desktop
