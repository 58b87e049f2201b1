#pragma once

#include <cstdint>

#include "desktop/wayland/WaylandConnection.h"
#include "platform/Cursor.h"

namespace valdrix::desktop {

/// The pointer's shape over our panels, from the user's cursor theme. A client that the pointer
/// enters has to say what it looks like there.
class WaylandCursor final : public platform::Cursor {
 public:
  /// `connection` must outlive it.
  explicit WaylandCursor(WaylandConnection& connection) : connection_(connection) {}

  void pushPointingHand() override;
  void pop() override;

  /// The pointer is over one of our surfaces, at a scale.
  void entered(wl_pointer* pointer, std::uint32_t serial, int scale);
  void left();

 private:
  void show();
  void loadTheme();
  [[nodiscard]] wl_cursor_image* image() const;

  WaylandConnection& connection_;
  WaylandOwned<wl_cursor_theme> theme_;
  int themeScale_ = 0;
  WaylandOwned<wl_surface> surface_;
  wl_pointer* pointer_ = nullptr;
  std::uint32_t serial_ = 0;
  int scale_ = 1;
  int pushes_ = 0;
};

}  // namespace valdrix::desktop
