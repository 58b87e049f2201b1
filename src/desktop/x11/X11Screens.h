#pragma once

#include <vector>

#include <QAbstractNativeEventFilter>
#include <QObject>

#include "desktop/screens/NotifyingScreens.h"
#include "desktop/x11/ScreenLayout.h"

class QScreen;

namespace valdrix::desktop {

/// The screens as Qt knows them, with the camera housing of the built-in panel.
class X11Screens final : public NotifyingScreens, private QAbstractNativeEventFilter {
 public:
  /// `housings` must outlive it.
  explicit X11Screens(CameraHousings& housings);
  ~X11Screens() override;

  [[nodiscard]] std::vector<platform::Screen> screens() const override;

 private:
  bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;
  void watch(QScreen* screen);

  QObject context_;
};

}  // namespace valdrix::desktop
