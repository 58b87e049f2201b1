#include "view/InteractionNodes.h"

#include "view/ViewGraph.h"

namespace valdrix::view {

HoverNode::~HoverNode() {
  graph().hoverGone(*this);
  setInside(false);
}

void HoverNode::apply(const HoverElement& element) {
  action_ = element.action;
  updateChild(element.content);
}

bool HoverNode::hitTest(Point point, HitPath& path) {
  if (!child_->hitTest(point, path)) return false;
  path.hovers.push_back(this);
  return true;
}

void HoverNode::setInside(bool isInside) {
  if (isInside == isInside_) return;
  isInside_ = isInside;
  graph().afterUpdate([action = action_, isInside] { action(isInside); });
}

ButtonNode::~ButtonNode() { graph().buttonGone(*this); }

void ButtonNode::apply(const ButtonElement& element) {
  action_ = element.action;
  updateChild(element.label);
}

bool ButtonNode::hitTest(Point point, HitPath& path) {
  if (!child_->hitTest(point, path)) return false;
  if (!path.button) path.button = this;
  return true;
}

void ButtonNode::click() const {
  // A copy: the action may take this button away.
  const auto action = action_;
  if (action) action();
}

namespace {

class HitTestingNode;

/// What the pointer meets: nothing at all, or the whole rectangle.
class HitTestingElement final : public ElementFor<HitTestingNode> {
 public:
  enum class Rule { asContent, nothing, wholeRectangle };
  HitTestingElement(View view, Rule hitRule) : content(std::move(view)), rule(hitRule) {}
  View content;
  Rule rule;
};

class HitTestingNode final : public NodeFor<HitTestingNode, WrapperNode, HitTestingElement> {
 public:
  using NodeFor::NodeFor;
  void apply(const HitTestingElement& element) {
    rule_ = element.rule;
    updateChild(element.content);
  }
  bool hitTest(Point point, HitPath& path) override {
    if (rule_ == HitTestingElement::Rule::nothing) return false;
    const bool hitsContent = child_->hitTest(point, path);
    return hitsContent ||
           (rule_ == HitTestingElement::Rule::wholeRectangle && bounds_.contains(point));
  }

 private:
  HitTestingElement::Rule rule_ = HitTestingElement::Rule::asContent;
};

class HelpNode;

/// What a view says of itself.
class HelpElement final : public ElementFor<HelpNode> {
 public:
  HelpElement(View view, std::string help) : content(std::move(view)), toolTip(std::move(help)) {}
  View content;
  std::string toolTip;
};

class HelpNode final : public NodeFor<HelpNode, WrapperNode, HelpElement> {
 public:
  using NodeFor::NodeFor;
  void apply(const HelpElement& element) {
    toolTip_ = element.toolTip;
    updateChild(element.content);
  }
  bool hitTest(Point point, HitPath& path) override {
    if (!child_->hitTest(point, path)) return false;
    if (path.toolTip.empty()) path.toolTip = toolTip_;
    return true;
  }

 private:
  std::string toolTip_;
};

}  // namespace

View View::allowsHitTesting(bool isAllowed) const {
  using Rule = HitTestingElement::Rule;
  return View(
      std::make_shared<HitTestingElement>(*this, isAllowed ? Rule::asContent : Rule::nothing));
}

View View::contentShape() const {
  return View(std::make_shared<HitTestingElement>(*this, HitTestingElement::Rule::wholeRectangle));
}

View View::onHover(std::function<void(bool)> action) const {
  return View(std::make_shared<HoverElement>(*this, std::move(action)));
}

View View::help(std::string toolTip) const {
  return View(std::make_shared<HelpElement>(*this, std::move(toolTip)));
}

View button(std::function<void()> action, View label) {
  return View(std::make_shared<ButtonElement>(std::move(action), std::move(label)));
}

}  // namespace valdrix::view
