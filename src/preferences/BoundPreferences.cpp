#include "preferences/BoundPreferences.h"

#include <utility>

namespace valdrix {

BoundPreferences::BoundPreferences(platform::UserDefaults& userDefaults)
    : userDefaults_(userDefaults),
      observer_(userDefaults.observeChanges([this] { storeChanged(); })) {}

const platform::UserDefaults& BoundPreferences::readStore() const {
  (void)changes_.get();
  return userDefaults_;
}

void BoundPreferences::storeChanged() const { changes_ = changes_.peek() + 1; }

bool BoundPreferences::boolForKey(std::string_view key) const {
  return readStore().boolForKey(key);
}

std::int64_t BoundPreferences::integerForKey(std::string_view key) const {
  return readStore().integerForKey(key);
}

double BoundPreferences::doubleForKey(std::string_view key) const {
  return readStore().doubleForKey(key);
}

std::string BoundPreferences::stringForKey(std::string_view key) const {
  return readStore().stringForKey(key).value_or("");
}

void BoundPreferences::set(std::string_view key, platform::UserDefaults::Value value) const {
  userDefaults_.set(key, std::move(value));
  // The store's own notice may come with a later turn of the loop.
  storeChanged();
}

}  // namespace valdrix
