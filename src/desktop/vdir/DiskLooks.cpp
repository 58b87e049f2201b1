#include "desktop/vdir/DiskLooks.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

namespace fs = std::filesystem;

bool SilentPlaces::hold(const fs::path& path) const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(places_, [&path](const fs::path& place) {
    return std::ranges::mismatch(place, path).in1 == place.end();
  });
}

void SilentPlaces::add(const fs::path& place) {
  const std::lock_guard lock(mutex_);
  places_.insert(place);
}

void SilentPlaces::remove(const fs::path& place) {
  const std::lock_guard lock(mutex_);
  places_.erase(place);
}

bool DiskLooks::begin(const fs::path& path) {
  const bool isSilent = silent_->hold(path);
  const std::lock_guard lock(mutex_);
  finish();
  if (isSilent) return false;
  place_ = path;
  since_ = std::chrono::steady_clock::now();
  return true;
}

void DiskLooks::end() {
  const std::lock_guard lock(mutex_);
  finish();
}

void DiskLooks::finish() {
  if (std::exchange(isGivenUp_, false)) silent_->remove(*place_);
  place_.reset();
}

bool DiskLooks::giveUp(std::chrono::milliseconds patience) {
  const std::lock_guard lock(mutex_);
  if (!place_ || std::chrono::steady_clock::now() - since_ < patience) return false;
  silent_->add(*place_);
  isGivenUp_ = true;
  return true;
}

bool DiskLooks::isGivenUp() const {
  const std::lock_guard lock(mutex_);
  return isGivenUp_;
}

}  // namespace valdrix::desktop
