#include "desktop/vdir/VdirWorker.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <malloc.h>
#include <poll.h>
#include <thread>
#include <utility>

#include <sys/eventfd.h>

#include "desktop/vdir/VdirStore.h"

namespace valdrix::desktop {
namespace {

using namespace std::chrono_literals;

/// How long the thread may work before it looks at notices and requests.
constexpr auto turn = 20ms;
/// How often changes are looked for where the system gives no notices of them.
constexpr auto blindInterval = 10s;
/// After a change the index waits for the next ones, but not for ever.
constexpr auto saveDelay = 5s;
constexpr auto saveInterval = 60s;

/// How long the end of the thread is waited for.
constexpr auto longestEnd = 500ms;

constexpr auto never = Pace::Clock::time_point::max();

int millisecondsUntil(Pace::Clock::time_point time) {
  if (time == never) return -1;
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(time - Pace::Clock::now());
  return static_cast<int>(std::clamp<std::int64_t>(rest.count(), 0, 60000));
}

}  // namespace

VdirWorker::VdirWorker(VdirHorizon horizon, std::shared_ptr<SilentPlaces> silent,
                       Callbacks callbacks)
    : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      looks_(std::move(silent)),
      callbacks_(std::move(callbacks)),
      request_(std::move(horizon)) {}

std::shared_ptr<VdirWorker> VdirWorker::start(VdirPaths paths, VdirHorizon horizon,
                                              std::shared_ptr<SilentPlaces> silent,
                                              Callbacks callbacks) {
  auto worker =
      std::make_shared<VdirWorker>(std::move(horizon), std::move(silent), std::move(callbacks));
  std::thread([worker, paths = std::move(paths)] { worker->run(paths); }).detach();
  return worker;
}

void VdirWorker::stop() {
  looks_.stop();
  wake();
  std::unique_lock lock(mutex_);
  const auto patience = looks_.isGivenUp() ? 0ms : longestEnd;
  ended_.wait_for(lock, patience, [this] { return hasEnded_; });
  callbacks_ = {};
}

void VdirWorker::request(VdirHorizon horizon) {
  {
    const std::lock_guard lock(mutex_);
    request_ = std::move(horizon);
  }
  wake();
}

void VdirWorker::wake() const { ::eventfd_write(wakeUp_.get(), 1); }

bool VdirWorker::isAtRest() {
  // Before the look, so that work which begins after it is announced.
  isWatched_ = false;
  if (isAtRest_) return true;
  isWatched_ = true;
  return false;
}

void VdirWorker::run(const VdirPaths& paths) {
  work(paths);
  const std::lock_guard lock(mutex_);
  hasEnded_ = true;
  ended_.notify_all();
}

void VdirWorker::work(const VdirPaths& paths) {
  // Left to itself, the allocator keeps blocks of the size of the largest that was ever freed,
  // which is that of the index.
  constexpr int largeBlock = 256 * 1024;
  ::mallopt(M_MMAP_THRESHOLD, largeBlock);
  VdirStore store(paths, looks_);
  while (!looks_.isStopped()) {
    takeRequest(store);
    takeTurn(store);
    wait(store);
    store.takeNotices();
  }
}

void VdirWorker::takeRequest(VdirStore& store) {
  std::optional<VdirHorizon> request;
  {
    const std::lock_guard lock(mutex_);
    request = std::exchange(request_, std::nullopt);
  }
  if (request) store.setHorizon(*request);
}

void VdirWorker::takeTurn(VdirStore& store) {
  const auto begin = Clock::now();
  if (store.isBlind() && begin >= lookedAgain_ + blindInterval) {
    lookedAgain_ = begin;
    store.lookAgain();
  }
  if (store.isSearchDue() && begin >= searching_.next()) {
    searching_.note(begin);
    store.search();
  }
  store.work(turn);
  // What was interrupted is not to be shown, nor kept for the next start.
  if (looks_.isStopped()) return;
  const auto now = Clock::now();
  // Whoever waits for the whole list after the start does not wait for the next notice, too.
  const bool isWhole = !store.hasWork() && !store.isSearchDue();
  const bool isFirstWhole = isWhole && !std::exchange(wasWhole_, wasWhole_ || isWhole);
  if (store.hasNews() && (isFirstWhole || now >= publishing_.next())) {
    publishing_.note(now);
    publish(store);
  }
  if (!store.isIndexOld()) return;
  if (!oldSince_) oldSince_ = now;
  if (now < nextSave()) return;
  store.saveIndex();
  saved_ = Clock::now();
  oldSince_.reset();
}

VdirWorker::Clock::time_point VdirWorker::nextSave() const {
  if (!oldSince_) return never;
  return saved_ ? std::max(*oldSince_ + saveDelay, *saved_ + saveInterval) : *oldSince_;
}

VdirWorker::Clock::time_point VdirWorker::nextTurn(const VdirStore& store) const {
  if (store.hasWork()) return {};
  auto next = nextSave();
  if (store.isSearchDue()) next = std::min(next, searching_.next());
  if (store.hasNews()) next = std::min(next, publishing_.next());
  if (store.isBlind()) next = std::min(next, lookedAgain_ + blindInterval);
  return next;
}

void VdirWorker::publish(VdirStore& store) {
  auto snapshot = store.takeSnapshot();
  const std::lock_guard lock(mutex_);
  if (callbacks_.publish) callbacks_.publish(std::move(snapshot));
}

void VdirWorker::announce() {
  if (isWatched_.exchange(true)) return;
  const std::lock_guard lock(mutex_);
  if (callbacks_.wake) callbacks_.wake();
}

void VdirWorker::wait(const VdirStore& store) {
  std::array<pollfd, 2> fds{{{wakeUp_.get(), POLLIN, 0}, {store.noticesFd(), POLLIN, 0}}};
  isAtRest_ = true;
  ::poll(fds.data(), fds.size(), millisecondsUntil(nextTurn(store)));
  isAtRest_ = false;
  announce();
  std::uint64_t count = 0;
  if (fds[0].revents != 0) ::eventfd_read(wakeUp_.get(), &count);
}

}  // namespace valdrix::desktop
