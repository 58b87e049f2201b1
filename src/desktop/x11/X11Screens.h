#pragma once

#include <vector>

#include <QAbstractNativeEventFilter>
#include <QObject>

#include "desktop/screens/CameraHousings.h"
#include "desktop/x11/ScreenLayout.h"
#include "observation/Listeners.h"
#include "platform/Screens.h"

class QScreen;

namespace valdrix::desktop {

/// The screens as Qt knows them, with the camera housing of the built-in panel.
class X11Screens final : public platform::Screens, private QAbstractNativeEventFilter {
 public:
  /// `housings` must outlive it.
  explicit X11Screens(CameraHousings& housings);
  ~X11Screens() override;

  [[nodiscard]] std::vector<platform::Screen> screens() const override;
  [[nodiscard]] std::optional<platform::Screen> mainScreen() const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

 private:
  bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;
  void watch(QScreen* screen);
  void scheduleUpdate();
  void update();

  const CameraHousings& housings_;
  Token housingsObserver_;
  Listeners<> observers_;
  std::vector<platform::Screen> known_;
  bool isUpdateScheduled_ = false;
  QObject context_;
};

}  // namespace valdrix::desktop
