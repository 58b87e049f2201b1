#pragma once

#include <functional>
#include <string>

#include <QRect>
#include <QSize>

#include "desktop/wayland/WaylandConnection.h"

namespace valdrix::desktop {

/// One output of the compositor.
class WaylandOutput {
 public:
  /// What an output says of itself.
  struct Description {
    std::string name;
    /// Where it lies in the space of all outputs, in logical pixels (origin top left, y downwards).
    QRect logical;
    QSize mode;               ///< device pixels, before it is turned
    bool isOnSide = false;    ///< turned by a quarter or three
    int bufferScale = 1;      ///< what pictures should be drawn at where only whole numbers go
    double refreshRate = 60;  ///< Hz, above 0
    bool operator==(const Description&) const = default;

    /// Device pixels per logical one; fractional where the compositor scales like that.
    [[nodiscard]] double scale() const;
  };

  /// `onChanged` is called after a description has been told completely. `connection` must outlive
  /// it.
  WaylandOutput(WaylandConnection& connection, const WaylandGlobal& global,
                std::function<void()> onChanged);
  WaylandOutput(const WaylandOutput&) = delete;
  WaylandOutput& operator=(const WaylandOutput&) = delete;

  [[nodiscard]] std::uint32_t globalName() const { return globalName_; }
  [[nodiscard]] wl_output* get() const { return output_.get(); }
  /// Whether enough has been told of it for it to count as a screen.
  [[nodiscard]] bool isComplete() const { return !current_.logical.isEmpty(); }
  [[nodiscard]] const Description& description() const { return current_; }

 private:
  static const wl_output_listener outputListener;
  static const zxdg_output_v1_listener placeListener;

  void finish();

  std::uint32_t globalName_;
  std::function<void()> onChanged_;
  WaylandOwned<wl_output> output_;
  WaylandOwned<zxdg_output_v1> place_;
  Description pending_;
  Description current_;
  QPoint position_;  ///< what is said where nothing tells logical places
};

}  // namespace valdrix::desktop
