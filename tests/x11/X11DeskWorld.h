#pragma once

#include <memory>

#include <QColor>
#include <QElapsedTimer>
#include <QRect>
#include <xcb/xcb.h>

#include "desktop/session/QtRunLoop.h"
#include "desktop/ui/QtTextMetrics.h"
#include "desktop/x11/X11Desktop.h"
#include "tests/support/X11Main.h"
#include "tests/x11/DeskWorld.h"

namespace valdrix::tests {

/// Another program's window on the test's X server: one colour, and it counts the clicks it gets.
class ForeignWindow {
 public:
  struct Options {
    QColor color = Qt::blue;
    bool isManaged = false;
    bool isFullscreen = false;     ///< asked of the window manager
    const char* type = nullptr;    ///< the end of the name of its _NET_WM_WINDOW_TYPE
    bool hasManagedChild = false;  ///< as the frames of window managers do
  };
  ForeignWindow(const QRect& frame, const Options& options);
  explicit ForeignWindow(const QRect& frame) : ForeignWindow(frame, Options{}) {}
  ~ForeignWindow();
  ForeignWindow(const ForeignWindow&) = delete;
  ForeignWindow& operator=(const ForeignWindow&) = delete;

  /// Presses of the main button that it got so far.
  [[nodiscard]] int presses();
  void moveTo(QPoint position);
  [[nodiscard]] xcb_window_t window() const { return window_; }

 private:
  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
  xcb_window_t window_;
  int presses_ = 0;
};

class X11DeskWorld final : public DeskWorld {
 public:
  enum class Company { nobody, compositor, windowManager };
  explicit X11DeskWorld(Company company = Company::nobody);
  ~X11DeskWorld() override;

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

  [[nodiscard]] desktop::X11Desktop& desktop() { return *desktop_; }
  /// Takes the window that fills the screen away.
  void hideBackground() { background_.reset(); }
  /// The device pixel of a place.
  [[nodiscard]] QPoint toDevice(view::Point point) const;

 private:
  void switchOutput(bool isOn);
  void removeMonitors();

  desktop::QtTextMetrics textMetrics_;
  desktop::CameraHousings housings_{{}};
  desktop::QtRunLoop runLoop_;
  std::unique_ptr<ForeignWindow> background_;
  std::unique_ptr<desktop::X11Desktop> desktop_;
  std::vector<Monitor> monitors_;
  bool isOutputOn_ = true;
};

}  // namespace valdrix::tests
