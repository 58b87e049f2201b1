#include "desktop/vdir/VdirWorker.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <malloc.h>
#include <poll.h>
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

constexpr auto never = Pace::Clock::time_point::max();

int millisecondsUntil(Pace::Clock::time_point time) {
  if (time == never) return -1;
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(time - Pace::Clock::now());
  return static_cast<int>(std::clamp<std::int64_t>(rest.count(), 0, 60000));
}

}  // namespace

VdirWorker::VdirWorker(VdirPaths paths, VdirHorizon horizon, Publish publish)
    : publish_(std::move(publish)),
      wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      request_(std::move(horizon)),
      thread_([this, paths = std::move(paths)] { run(paths); }) {}

VdirWorker::~VdirWorker() {
  isStopped_ = true;
  wake();
  thread_.join();
}

void VdirWorker::request(VdirHorizon horizon) {
  {
    const std::lock_guard lock(mutex_);
    request_ = std::move(horizon);
  }
  wake();
}

void VdirWorker::wake() const { ::eventfd_write(wakeUp_.get(), 1); }

void VdirWorker::run(const VdirPaths& paths) {
  // Left to itself, the allocator keeps blocks of the size of the largest that was ever freed,
  // which is that of the index.
  constexpr int largeBlock = 256 * 1024;
  ::mallopt(M_MMAP_THRESHOLD, largeBlock);
  VdirStore store(paths, isStopped_);
  while (!isStopped_) {
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
  if (isStopped_) return;
  const auto now = Clock::now();
  // Whoever waits for the whole list after the start does not wait for the next notice, too.
  const bool isWhole = !store.hasWork() && !store.isSearchDue();
  const bool isFirstWhole = isWhole && !std::exchange(wasWhole_, wasWhole_ || isWhole);
  if (store.hasNews() && (isFirstWhole || now >= publishing_.next())) {
    publishing_.note(now);
    publish_(store.takeSnapshot());
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

void VdirWorker::wait(const VdirStore& store) const {
  std::array<pollfd, 2> fds{{{wakeUp_.get(), POLLIN, 0}, {store.noticesFd(), POLLIN, 0}}};
  ::poll(fds.data(), fds.size(), millisecondsUntil(nextTurn(store)));
  std::uint64_t count = 0;
  if (fds[0].revents != 0) ::eventfd_read(wakeUp_.get(), &count);
}

}  // namespace valdrix::desktop
