#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "observation/Token.h"
#include "view/Geometry.h"

namespace valdrix::platform {

/// One screen. Rectangles are in points, in a space that all screens share, its origin at the
/// bottom left of the main screen and y growing upwards.
struct Screen {
  /// What the desktop calls it (a connector such as "eDP-1"); tells screens apart, nothing more.
  std::string name{};
  view::Rect frame{};
  /// Device pixels per point, above 0.
  double scale = 1;
  /// How far the camera housing reaches down from the top edge, in points; 0 without one.
  double safeAreaInsetTop = 0;
  /// The usable areas of the top edge to both sides of the housing, where they are known.
  std::optional<view::Rect> auxiliaryTopLeftArea{};
  std::optional<view::Rect> auxiliaryTopRightArea{};
  bool operator==(const Screen&) const = default;
};

/// The screens that are connected and in use. Main thread only.
class Screens {
 public:
  virtual ~Screens() = default;

  /// All screens in the desktop's order; may be empty.
  [[nodiscard]] virtual std::vector<Screen> screens() const = 0;
  /// The screen that the desktop considers the main one, or none when there is no screen.
  [[nodiscard]] virtual std::optional<Screen> mainScreen() const = 0;

  /// Calls `block` on the main thread after any screen came, went, moved, was resized or rescaled.
  /// Several changes that belong together may arrive as one call; by then `screens` is up to date.
  [[nodiscard]] virtual Token observeChanges(std::function<void()> block) = 0;
};

}  // namespace valdrix::platform
