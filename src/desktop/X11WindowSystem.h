#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "desktop/WindowSystem.h"
#include "desktop/x11/X11Desktop.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Everything that an X server serves.
class X11WindowSystem final : public WindowSystem {
 public:
  /// Why this desktop is not to be served by it; empty when it is.
  [[nodiscard]] static std::string refusal();
  /// All must outlive it.
  X11WindowSystem(platform::RunLoop& runLoop, const QtTextMetrics& textMetrics,
                  CameraHousings& housings);

  [[nodiscard]] QJsonObject backends() const override;
  [[nodiscard]] std::uint64_t framesDrawn() const override;
  void setOnMenuRequested(std::function<void(QPoint)> block) override {
    desktop_.onMenuRequested = std::move(block);
  }
  [[nodiscard]] Token holdPanels() override { return desktop_.pointer.holdMotion(); }
  [[nodiscard]] bool hasTray() const override { return desktop_.tray.isActive(); }
  [[nodiscard]] Token observeTray(std::function<void()> block) override {
    return desktop_.tray.observeChanges(std::move(block));
  }
  [[nodiscard]] KeySource::Maker keySource(
      std::function<bool(platform::MediaKey)> mayTake) override;
  [[nodiscard]] std::string themeName() const override { return desktop_.theme.name(); }
  [[nodiscard]] Token observeTheme(std::function<void()> block) override {
    return desktop_.theme.observeChanges(std::move(block));
  }

  void bringToFront(std::uint64_t window) override {
    desktop_.activation.bringToFront(static_cast<xcb_window_t>(window));
  }

  [[nodiscard]] platform::Screens& screens() override { return desktop_.screens; }
  [[nodiscard]] platform::PanelWindows& panelWindows() override { return desktop_.panelWindows; }
  [[nodiscard]] platform::Pointer& pointer() override { return desktop_.pointer; }
  [[nodiscard]] platform::Cursor& cursor() override { return desktop_.cursor; }

 private:
  X11Desktop desktop_;
  platform::RunLoop& runLoop_;
};

}  // namespace valdrix::desktop
