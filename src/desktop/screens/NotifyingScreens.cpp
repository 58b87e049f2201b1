#include "desktop/screens/NotifyingScreens.h"

#include <utility>

namespace valdrix::desktop {

NotifyingScreens::NotifyingScreens(CameraHousings& housings)
    : housings_(housings),
      housingsObserver_(housings.observeChanges([this] { scheduleUpdate(); })) {}

std::optional<platform::Screen> NotifyingScreens::mainScreen() const {
  const auto all = screens();
  if (all.empty()) return std::nullopt;
  return all.front();
}

Token NotifyingScreens::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

void NotifyingScreens::scheduleUpdate() {
  if (std::exchange(isUpdateScheduled_, true)) return;
  QMetaObject::invokeMethod(
      &context_, [this] { update(); }, Qt::QueuedConnection);
}

void NotifyingScreens::scheduleReplacement() {
  known_.reset();
  scheduleUpdate();
}

void NotifyingScreens::update() {
  isUpdateScheduled_ = false;
  auto now = screens();
  if (now == known_) return;
  known_ = std::move(now);
  observers_.notify();
}

}  // namespace valdrix::desktop
