#pragma once

#include <map>
#include <memory>

#include "desktop/session/QtRunLoop.h"
#include "desktop/ui/QtTextMetrics.h"
#include "desktop/wayland/WaylandDesktop.h"
#include "tests/support/SwayCompositor.h"
#include "tests/support/WaylandTestClient.h"
#include "tests/x11/DeskWorld.h"

namespace valdrix::tests {

class WaylandDeskWorld final : public DeskWorld {
 public:
  /// Where monitors can be unplugged the compositor runs in windows of another one.
  enum class Monitors { fixed, movable };
  explicit WaylandDeskWorld(Monitors monitors = Monitors::fixed);
  ~WaylandDeskWorld() override;

  platform::Screens& screens() override { return desktop_->screens; }
  platform::PanelWindows& panelWindows() override { return desktop_->panelWindows; }
  platform::Pointer& pointer() override { return desktop_->pointer; }
  platform::Cursor& cursor() override { return desktop_->cursor; }
  view::HostingView::Services services() override;

  void move(view::Point to) override;
  void drag(const std::vector<view::Point>& path, bool withRightButton) override;
  bool clickReachesDesktop() override;
  void settle() override;
  bool runUntilStill(view::HostingView& content) override;
  std::uint64_t framesDrawn(platform::PanelWindow& window) override;
  void setMonitors(const std::vector<Monitor>& monitors) override;
  std::string nameOf(const std::string& monitor) override;
  bool hearsOnlyOfItsOwnWindows() const override { return true; }
  bool noticesRegionsOnlyOnMotion() const override { return true; }

  [[nodiscard]] desktop::WaylandDesktop& desktop() { return *desktop_; }
  [[nodiscard]] SwayCompositor& compositor() { return *compositor_; }
  [[nodiscard]] WaylandTestClient& client() { return *client_; }

 private:
  desktop::QtTextMetrics textMetrics_;
  desktop::QtRunLoop runLoop_;
  desktop::CameraHousings housings_{desktop::CameraHousings::Sources{}};
  std::unique_ptr<SwayCompositor> host_;
  std::unique_ptr<SwayCompositor> compositor_;
  std::unique_ptr<WaylandTestClient> client_;
  std::unique_ptr<desktop::WaylandDesktop> desktop_;
  std::map<std::string, std::string> outputs_;  ///< by monitor
};

}  // namespace valdrix::tests
