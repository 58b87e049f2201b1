#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <utility>

#include <QPoint>

#include "desktop/wayland/WaylandBuffers.h"
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
  struct Shape {
    /// None where no theme has it.
    std::unique_ptr<WaylandBuffers::Buffer> buffer;
    int scale = 1;
    QPoint hotspot;  ///< in logical pixels
  };

  void show();
  [[nodiscard]] Shape load(bool isHand) const;

  WaylandConnection& connection_;
  /// Those that have been needed, by whether it is the hand and by the scale that was asked for.
  std::map<std::pair<bool, int>, Shape> shapes_;
  WaylandOwned<wl_surface> surface_;
  wl_pointer* pointer_ = nullptr;
  std::uint32_t serial_ = 0;
  int scale_ = 1;
  int pushes_ = 0;
};

}  // namespace valdrix::desktop
