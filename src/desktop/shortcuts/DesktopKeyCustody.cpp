#include "desktop/shortcuts/DesktopKeyCustody.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

using platform::MediaKey;

namespace {

constexpr double firstRetry = 5;
constexpr double longestRetry = 300;
/// One that changes, one that sees that it has, and one to spare for who else changes something.
constexpr int mostPasses = 3;

}  // namespace

DesktopKeyCustody::DesktopKeyCustody(platform::RunLoop& runLoop, Stores stores,
                                     const KnownDesktop* desktop, std::string program,
                                     CustodyRecord record)
    : runLoop_(runLoop),
      stores_(std::move(stores)),
      desktop_(desktop),
      program_(std::move(program)),
      record_(std::move(record)),
      content_(record_.content()),
      retryDelay_(firstRetry) {
  tell();
}

bool DesktopKeyCustody::isConsented() const {
  return desktop_ && desktop_->changes && content_.consents.contains(desktop_->id);
}

bool DesktopKeyCustody::hasWork() const {
  return record_.status() == CustodyRecord::Status::broken || content_ != record_.content() ||
         !content_.isEmpty();
}

void DesktopKeyCustody::entrust() {
  if (!desktop_ || !desktop_->changes) return;
  content_.consents.insert(desktop_->id);
  reconsiderLater();
}

void DesktopKeyCustody::restore() {
  content_.consents.clear();
  reconsiderLater();
}

void DesktopKeyCustody::setWanted(const std::set<MediaKey>& keys) {
  if (std::exchange(wanted_, keys) != keys && hasWork()) reconsiderLater();
}

// In a turn of its own: several wishes are one change.
void DesktopKeyCustody::reconsiderLater() {
  retryDelay_ = firstRetry;
  passes_ = 0;
  isOutdated_ = true;
  if (isPassing_ || std::exchange(isScheduled_, true)) return;
  runLoop_.async(lifetime_.weak([this] {
    isScheduled_ = false;
    reconcile();
  }));
  tell();
}

void DesktopKeyCustody::reconcile() {
  retry_.reset();
  isOutdated_ = false;
  if (!hasWork() || (isConsented() && !wanted_)) return end({}, true);
  isPassing_ = true;
  tell();
  stores_.find(wantedChanges(), [this](const Changes& changes) {
    stores_.read(settingsOf(changes),
                 [this, changes](const Readings& readings) { decide(changes, readings); });
  });
}

DesktopKeyCustody::Changes DesktopKeyCustody::wantedChanges() const {
  if (!desktop_ || !desktop_->changes) return {};
  const bool isBroken = record_.status() == CustodyRecord::Status::broken;
  if (isBroken) return desktop_->changes(desktop_->keys, program_);
  return isConsented() ? desktop_->changes(wantedKeys(), program_) : Changes();
}

KnownDesktop::Keys DesktopKeyCustody::wantedKeys() const {
  KnownDesktop::Keys keys;
  if (!desktop_ || !wanted_) return keys;
  std::ranges::set_intersection(desktop_->keys, *wanted_, std::inserter(keys, keys.end()));
  return keys;
}

std::vector<DesktopKeyCustody::Setting> DesktopKeyCustody::settingsOf(
    const Changes& changes) const {
  std::set<Setting> settings;
  for (const auto& change : changes) settings.insert({change.store, change.setting});
  for (const auto& entry : content_.entries)
    if (concerns(entry)) settings.insert({entry.store, entry.setting});
  return {settings.begin(), settings.end()};
}

bool DesktopKeyCustody::concerns(const CustodyRecord::Entry& entry) const {
  return (desktop_ && entry.desktop == desktop_->id) || !content_.consents.contains(entry.desktop);
}

void DesktopKeyCustody::decide(const Changes& changes, const Readings& readings) {
  if (isOutdated_) return reconcile();
  if (record_.status() == CustodyRecord::Status::broken) {
    if (desktop_) content_.entries = CustodyPlan::evidence(desktop_->id, changes, readings);
    return takeUpEvidence();
  }
  std::vector<CustodyRecord::Entry> concerned;
  std::vector<CustodyRecord::Entry> others;
  for (const auto& entry : content_.entries)
    (concerns(entry) ? concerned : others).push_back(entry);
  const auto plan =
      CustodyPlan::make(desktop_ ? desktop_->id : std::string(), concerned, changes, readings);
  content_.entries = others;
  content_.entries.insert(content_.entries.end(), plan.entries.begin(), plan.entries.end());
  if (content_ != record_.content() && !record_.save(content_))
    return fail("Ce qui était réglé ne peut pas être noté : valdrix ne change rien.");
  if (plan.writes.empty() || ++passes_ > mostPasses) return finish(plan);
  stores_.write(
      plan.writes, [this] { return !isOutdated_; }, [this] { reconcile(); });
}

/// What the settings themselves say in place of a record that says nothing.
void DesktopKeyCustody::takeUpEvidence() {
  if (!content_.entries.empty()) content_.consents.insert(desktop_->id);
  if (!record_.save(content_)) return fail("La note de ce qui était réglé est illisible.");
  if (content_.isEmpty()) return end({}, true);
  reconcile();
}

void DesktopKeyCustody::finish(const CustodyPlan& plan) {
  entrusted_ = isConsented() ? wantedKeys() : KnownDesktop::Keys();
  for (const auto key : plan.open) entrusted_.erase(key);
  end(noteOn(plan), plan.writes.empty() && plan.unreadable.empty());
}

std::string DesktopKeyCustody::noteOn(const CustodyPlan& plan) const {
  const auto& name = desktop_ ? desktop_->indicator.desktop : std::string("Ce bureau");
  if (!plan.unreadable.empty())
    return name + " ne laisse pas lire ce réglage : " + plan.unreadable.front().second +
           ". valdrix réessaie de temps en temps.";
  if (!plan.writes.empty())
    return name + " n'accepte pas de changer ce réglage : " + plan.writes.front().setting.second +
           ". valdrix réessaie de temps en temps.";
  return {};
}

void DesktopKeyCustody::fail(std::string note) {
  content_ = record_.content();
  entrusted_.clear();
  end(std::move(note), false);
}

void DesktopKeyCustody::end(std::string note, bool isComplete) {
  passes_ = 0;
  isPassing_ = false;
  state_.note = std::move(note);
  state_.hasFailed = !isComplete;
  if (isComplete) {
    retryDelay_ = firstRetry;
  } else {
    retry_ = runLoop_.scheduleTimer(retryDelay_, false, [this] { reconcile(); });
    retryDelay_ = std::min(retryDelay_ * 2, longestRetry);
  }
  tell();
}

void DesktopKeyCustody::tell() {
  State next = state_;
  next.isEntrusted = isConsented();
  next.isBusy = isPassing_ || isScheduled_;
  next.places.clear();
  if (desktop_) {
    for (const auto key : desktop_->keys)
      next.places[key] = entrusted_.contains(key) ? Place::entrusted : Place::desktop;
    for (const auto key : desktop_->keptKeys) next.places[key] = Place::impossible;
    if (next.note.empty() && !next.isBusy) next.note = desktop_->keptNote;
  }
  if (record_.status() == CustodyRecord::Status::unreadable)
    next.note = "La note de ce qui était réglé ne peut pas être lue : valdrix n'y touche pas.";
  const auto before = std::exchange(state_, next);
  if (before != state_) observers_.notify();
}

}  // namespace valdrix::desktop
