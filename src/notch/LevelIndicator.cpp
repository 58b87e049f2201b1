#include "notch/LevelIndicator.h"

#include <utility>

#include "notch/NotchAnimations.h"
#include "preferences/PreferenceKeys.h"
#include "preferences/PreferenceRules.h"
#include "view/Transaction.h"

namespace valdrix {

LevelIndicator::LevelIndicator(platform::RunLoop& runLoop,
                               const platform::UserDefaults& userDefaults,
                               Observed<bool>& isVisible, std::string_view preference)
    : runLoop_(runLoop),
      userDefaults_(userDefaults),
      isVisible_(isVisible),
      preference_(preference) {}

bool LevelIndicator::isEnabled() const { return userDefaults_.boolForKey(preference_); }

void LevelIndicator::show(LevelIndicator& other, const std::function<void()>& setLevel) {
  view::withAnimation(notchAnimation::show, [&] {
    other.drop();
    setLevel();
    isVisible_ = true;
  });
}

void LevelIndicator::scheduleDismiss(std::function<void()> block) {
  cancelDismiss();
  const double duration =
      preferenceRules::hudDuration(userDefaults_.doubleForKey(preferenceKeys::hudDuration));
  dismissTimer_ = runLoop_.scheduleTimer(duration, false, std::move(block));
}

void LevelIndicator::hide() {
  cancelDismiss();
  view::withAnimation(notchAnimation::hide, [this] { isVisible_ = false; });
}

void LevelIndicator::drop() {
  if (!isVisible_) return;
  cancelDismiss();
  isVisible_ = false;
}

}  // namespace valdrix
