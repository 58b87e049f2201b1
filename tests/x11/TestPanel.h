#pragma once

#include <memory>

#include "observation/Observed.h"
#include "tests/x11/DeskWorld.h"
#include "view/Shape.h"
#include "view/View.h"

namespace valdrix::tests {

inline constexpr view::Color panelColor{1, 0, 0, 1};

/// A panel as the program makes it: 600 by 1000 points, hanging from the middle of the main
/// screen's top edge, reaching below the screen; at its top centre a red button that can grow. It
/// counts clicks and hovers.
class TestPanel {
 public:
  explicit TestPanel(DeskWorld& world) : world_(world) {
    const auto screen = world.screens().mainScreen()->frame;
    frame_ = {screen.midX() - size.width / 2, screen.maxY() - size.height, size.width, size.height};
    platform::PanelConfiguration configuration;
    configuration.isBorderless = true;
    configuration.level = 26;
    configuration.isOpaque = false;
    configuration.hasShadow = false;
    configuration.ignoresMouseEvents = true;
    configuration.acceptsMouseMovedEvents = true;
    configuration.canBecomeKey = false;
    configuration.canBecomeMain = false;
    content = std::make_unique<view::HostingView>(Body{this}, world.services());
    content->setFrame({0, 0, size.width, size.height});
    window = world.panelWindows().makeWindow(frame_, configuration);
    window->setContentView(content.get());
    window->setTrackedRectangle(box({100, 32}));
  }
  void show() {
    window->orderFrontRegardless();
    world_.settle();
  }
  void track(view::Size tracked) {
    window->setTrackedRectangle(box(tracked));
    world_.settle();
  }
  void accept(bool accepts = true) {
    window->setIgnoresMouseEvents(!accepts);
    world_.settle();
  }

  /// Of a box of that size at the panel's top centre, in the panel's coordinates.
  [[nodiscard]] static view::Rect box(view::Size box) {
    return {(size.width - box.width) / 2, 0, box.width, box.height};
  }
  /// On the screen: `dx` points right of the middle and `down` below the top edge.
  [[nodiscard]] view::Point at(double dx, double down) const {
    return {frame_.midX() + dx, frame_.maxY() - down};
  }

  static constexpr view::Size size{600, 1000};
  Observed<double> height{32};
  int clicks = 0;
  bool isHovered = false;
  std::unique_ptr<view::HostingView> content;
  std::unique_ptr<platform::PanelWindow> window;

 private:
  struct Body {
    TestPanel* panel;
    [[nodiscard]] view::View body() const {
      auto* owner = panel;
      return view::zStack(view::Alignment::top,
                          {view::button([owner] { ++owner->clicks; },
                                        view::fill(view::Rectangle{}, panelColor))
                               .frame(view::FrameSize{100, owner->height})
                               .onHover([owner](bool isInside) { owner->isHovered = isInside; })})
          .frame(view::FrameSize{size.width, size.height, view::Alignment::top});
    }
  };

  DeskWorld& world_;
  view::Rect frame_;
};

}  // namespace valdrix::tests
