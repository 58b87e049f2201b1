#include "desktop/vdir/VdirSource.h"

#include <algorithm>
#include <utility>

#include "desktop/vdir/CalendarFolders.h"
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

}  // namespace

VdirSource::VdirSource(platform::RunLoop& runLoop, QtUserCalendar& userCalendar, VdirPaths paths)
    : runLoop_(runLoop),
      userCalendar_(userCalendar),
      paths_(std::move(paths)),
      snapshot_(std::make_shared<const VdirSnapshot>()) {}

VdirSource::~VdirSource() = default;

CalendarSource::Reach VdirSource::reach() const { return reachOf(paths_); }

void VdirSource::start() {
  auto show = reading_.emplace().weak([this](const std::shared_ptr<const VdirSnapshot>& snapshot) {
    snapshot_ = snapshot;
    observers_.notify();
  });
  auto publish = [&loop = runLoop_, show](std::shared_ptr<const VdirSnapshot> snapshot) {
    loop.async([show, snapshot = std::move(snapshot)] { show(snapshot); });
  };
  horizon_ = horizon();
  worker_ = std::make_unique<VdirWorker>(paths_, horizon_, std::move(publish));
  clockChanges_ = userCalendar_.observeChanges([this] { requestHorizon(); });
}

void VdirSource::stop() {
  clockChanges_.reset();
  reading_.reset();
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
