#include "desktop/vdir/VdirSource.h"

#include <algorithm>
#include <utility>

#include "desktop/vdir/CalendarFolders.h"
#include "desktop/vdir/DiskLooks.h"
#include "desktop/vdir/VdirSnapshot.h"
#include "desktop/vdir/VdirWorker.h"

namespace valdrix::desktop {

using platform::Event;
using platform::Instant;
using std::chrono::days;

namespace {

/// What is looked up beyond what was asked for, so that the next days ask for nothing new.
constexpr days reserve{7};
/// Nothing further away from today is looked up, whoever asks.
constexpr days furthest{50 * 365};

/// So long a disk may take for one answer before the others are read without it.
constexpr double patience = 1;  // seconds

}  // namespace

VdirSource::VdirSource(platform::RunLoop& runLoop, QtUserCalendar& userCalendar, VdirPaths paths)
    : runLoop_(runLoop),
      userCalendar_(userCalendar),
      paths_(std::move(paths)),
      snapshot_(std::make_shared<const VdirSnapshot>()),
      silent_(std::make_shared<SilentPlaces>()) {}

VdirSource::~VdirSource() { stop(); }

CalendarSource::Reach VdirSource::reach() const { return reachOf(paths_); }

void VdirSource::start() {
  startWorker();
  clockChanges_ = userCalendar_.observeChanges([this] { requestHorizon(); });
}

void VdirSource::startWorker() {
  auto show = reading_.emplace().weak([this](const std::shared_ptr<const VdirSnapshot>& snapshot) {
    snapshot_ = snapshot;
    observers_.notify();
  });
  auto publish = [&loop = runLoop_, show](std::shared_ptr<const VdirSnapshot> snapshot) {
    loop.async([show, snapshot = std::move(snapshot)] { show(snapshot); });
  };
  auto wake = [&loop = runLoop_, watch = reading_->weak([this] { watchWorker(); })] {
    loop.async(watch);
  };
  horizon_ = horizon();
  worker_ = VdirWorker::start(paths_, horizon_, silent_, {std::move(publish), std::move(wake)});
  watchWorker();
}

void VdirSource::watchWorker() {
  workerWatch_ = runLoop_.scheduleTimer(patience, true, [this] { checkWorker(); });
}

void VdirSource::checkWorker() {
  if (worker_->isAtRest()) return workerWatch_.reset();
  if (!worker_->giveUp(std::chrono::milliseconds(static_cast<int>(patience * 1000)))) return;
  worker_->stop();
  startWorker();
}

void VdirSource::stop() {
  clockChanges_.reset();
  reading_.reset();
  workerWatch_.reset();
  if (worker_) worker_->stop();
  worker_.reset();
  snapshot_ = std::make_shared<const VdirSnapshot>();
}

VdirHorizon VdirSource::horizon() const {
  const auto today = userCalendar_.startOfDay(userCalendar_.now());
  return {today - behind_, today + ahead_, userCalendar_.zone(), today};
}

void VdirSource::requestHorizon() const {
  auto wanted = horizon();
  if (!worker_ || wanted == horizon_) return;
  horizon_ = wanted;
  worker_->request(std::move(wanted));
}

void VdirSource::widen(Instant start, Instant end) const {
  const auto today = userCalendar_.startOfDay(userCalendar_.now());
  const auto first = std::max<Instant>(start, today - furthest);
  const auto last = std::min<Instant>(end, today + furthest);
  if (first < today - behind_) behind_ = std::chrono::ceil<days>(today - first) + reserve;
  if (last > today + ahead_) ahead_ = std::chrono::ceil<days>(last - today) + reserve;
  requestHorizon();
}

std::vector<platform::EventCalendar> VdirSource::calendars() const {
  return snapshot_->calendars();
}

std::vector<Event> VdirSource::events(Instant start, Instant end,
                                      const std::vector<std::string>& calendarIdentifiers) const {
  widen(start, end);
  return snapshot_->events(start, end, calendarIdentifiers);
}

Token VdirSource::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

}  // namespace valdrix::desktop
