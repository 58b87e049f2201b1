#pragma once

#include <optional>
#include <vector>

#include <QObject>

#include "desktop/screens/CameraHousings.h"
#include "observation/Listeners.h"
#include "platform/Screens.h"

namespace valdrix::desktop {

/// What the screens of every window system have in common: the first one is the main one, and of
/// many news of one new arrangement those who wait hear once.
class NotifyingScreens : public platform::Screens {
 public:
  [[nodiscard]] std::optional<platform::Screen> mainScreen() const final;
  [[nodiscard]] Token observeChanges(std::function<void()> block) final;

 protected:
  /// `housings` must outlive it; when what is known of them changes, so do the screens.
  explicit NotifyingScreens(CameraHousings& housings);

  /// Takes the screens as they are now for known. To be called when `screens` can answer.
  void begin() { known_ = screens(); }
  /// The arrangement may have changed. One change comes as many events, with screens that overlap
  /// in between; in the next turn of the loop all of them have been read.
  void scheduleUpdate();
  /// A screen has gone. What was shown there has gone with it, even if all looks the same by then.
  void scheduleReplacement();
  [[nodiscard]] const CameraHousings& housings() const { return housings_; }

 private:
  void update();

  const CameraHousings& housings_;
  Listeners<> observers_;
  std::optional<std::vector<platform::Screen>> known_;
  bool isUpdateScheduled_ = false;
  Token housingsObserver_;
  QObject context_;
};

}  // namespace valdrix::desktop
