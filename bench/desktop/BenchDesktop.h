#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <QPoint>
#include <QRect>
#include <QSize>

#include "bench/desktop/BenchSession.h"
#include "tests/support/VirtualDisplay.h"

namespace valdrix::bench {

/// A desktop for measuring on: screen, window manager, compositor, sound server and session bus,
/// all private, and a backdrop of one colour in place of a wallpaper. Programs started by this
/// process find it by the environment. Needs a QCoreApplication.
class BenchDesktop {
 public:
  /// Wide enough for the panel in the middle and a yardstick's window on each side.
  static constexpr QSize size{2400, 1080};

  BenchDesktop() = default;
  BenchDesktop(const BenchDesktop&) = delete;
  BenchDesktop& operator=(const BenchDesktop&) = delete;

  /// Starts everything. Whether all of it runs; if not, `missing` names what does not.
  bool start();
  [[nodiscard]] const std::string& missing() const { return missing_; }

  [[nodiscard]] tests::VirtualDisplay& display() { return *display_; }

  /// The colours on the screen in a rectangle, row by row, as 0xRRGGBB.
  [[nodiscard]] std::vector<std::uint32_t> pixels(const QRect& rectangle) const;
  [[nodiscard]] std::uint32_t pixel(QPoint at) const { return pixels({at, QSize(1, 1)}).front(); }
  /// Whether nothing covers the backdrop there.
  [[nodiscard]] bool isBare(QPoint at) const { return pixel(at) == backdropColor; }

  /// The key code that makes an X keysym; 0 when none does.
  [[nodiscard]] xcb_keycode_t keyCode(xcb_keysym_t keysym) const;
  /// Hands the press or release to the server and does not wait for it.
  void sendKey(xcb_keycode_t key, bool isPress) const;
  void tapKey(xcb_keycode_t key) const;

 private:
  static constexpr std::uint32_t backdropColor = 0x3060A0;

  void showBackdrop() const;

  BenchSession session_;
  std::unique_ptr<tests::VirtualDisplay> display_;
  std::string missing_;
};

}  // namespace valdrix::bench
