#pragma once

#include <functional>
#include <string>
#include <utility>

#include "desktop/WindowSystem.h"
#include "desktop/wayland/WaylandDesktop.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Everything that a Wayland compositor with a layer shell serves.
class WaylandWindowSystem final : public WindowSystem {
 public:
  /// Why this desktop is not to be served by it; empty when it is.
  [[nodiscard]] static std::string refusal();
  /// `textMetrics` and `housings` must outlive it.
  WaylandWindowSystem(platform::RunLoop& runLoop, const QtTextMetrics& textMetrics,
                      CameraHousings& housings);

  [[nodiscard]] QJsonObject backends() const override;
  [[nodiscard]] std::uint64_t framesDrawn() const override { return desktop_.framesDrawn; }
  void setOnMenuRequested(std::function<void(QPoint)> block) override {
    desktop_.onMenuRequested = std::move(block);
  }

  [[nodiscard]] platform::Screens& screens() override { return desktop_.screens; }
  [[nodiscard]] platform::PanelWindows& panelWindows() override { return desktop_.panelWindows; }
  [[nodiscard]] platform::Pointer& pointer() override { return desktop_.pointer; }
  [[nodiscard]] platform::Cursor& cursor() override { return desktop_.cursor; }

 private:
  WaylandDesktop desktop_;
};

}  // namespace valdrix::desktop
