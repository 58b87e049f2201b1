#pragma once

#include <functional>
#include <optional>
#include <string>

#include "observation/Token.h"
#include "view/Animated.h"
#include "view/DisplayList.h"
#include "view/HostingView.h"

namespace valdrix::view {

/// The little sign that explains what the pointer has been over for a while. Drawn by the hosting
/// view itself, in front of everything, so that it looks the same on every desktop.
class ToolTip {
 public:
  /// `onChange` is called when the sign wants to come or go.
  ToolTip(const HostingView::Services& services, std::function<void()> onChange);

  /// The pointer is at `pointer`, over something that explains itself with `text`; either may be
  /// missing. The sign comes after a while, beside where the pointer is then.
  void update(const std::string& text, std::optional<Point> pointer);
  /// The button went down: what is under the pointer needs no more explaining.
  void dismiss();

  /// Moves the sign on to `time`. Whether it is still on its way.
  bool advance(double time);
  /// Adds the sign to `list`, inside of `area`.
  void draw(DisplayList& list, const Rect& area);

 private:
  void show();
  void fade(double opacity);

  const HostingView::Services& services_;
  std::function<void()> onChange_;
  std::string text_;
  std::string shownText_;
  std::optional<Point> pointer_;
  Point anchor_;
  Animated<1> opacity_;
  Token timer_;
};

}  // namespace valdrix::view
