#pragma once

#include <functional>
#include <utility>

#include "view/View.h"

namespace valdrix::view {

class HoverElement final : public ElementFor<HoverNode> {
 public:
  HoverElement(View view, std::function<void(bool)> hoverAction)
      : content(std::move(view)), action(std::move(hoverAction)) {}
  View content;
  std::function<void(bool)> action;
};

/// Tells when the pointer comes over its content and when it leaves; also leaves when it goes away
/// itself.
class HoverNode final : public NodeFor<HoverNode, WrapperNode, HoverElement> {
 public:
  using NodeFor::NodeFor;
  ~HoverNode() override;

  void apply(const HoverElement& element);
  bool hitTest(Point point, HitPath& path) override;
  /// The pointer is now inside or not; the action runs once the tree is up to date.
  void setInside(bool isInside);

 private:
  std::function<void(bool)> action_;
  bool isInside_ = false;
};

class ButtonElement final : public ElementFor<ButtonNode> {
 public:
  ButtonElement(std::function<void()> clickAction, View view)
      : action(std::move(clickAction)), label(std::move(view)) {}
  std::function<void()> action;
  View label;
};

/// Runs its action when it is clicked.
class ButtonNode final : public NodeFor<ButtonNode, WrapperNode, ButtonElement> {
 public:
  using NodeFor::NodeFor;
  ~ButtonNode() override;

  void apply(const ButtonElement& element);
  bool hitTest(Point point, HitPath& path) override;
  void click() const;

 private:
  std::function<void()> action_;
};

}  // namespace valdrix::view
