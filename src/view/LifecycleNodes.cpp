#include <utility>

#include "observation/Observed.h"
#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

namespace {

class IdentityNode;

class IdentityElement final : public ElementFor<IdentityNode> {
 public:
  IdentityElement(View view, std::string name)
      : content(std::move(view)), identifier(std::move(name)) {}
  [[nodiscard]] const std::string* identity() const override { return &identifier; }
  View content;
  std::string identifier;
};

class IdentityNode final : public NodeFor<IdentityNode, WrapperNode, IdentityElement> {
 public:
  using NodeFor::NodeFor;
  void apply(const IdentityElement& element) { updateChild(element.content); }
};

class PresenceNode;

class PresenceElement final : public ElementFor<PresenceNode> {
 public:
  PresenceElement(View view, std::function<void()> appear, std::function<void()> disappear)
      : content(std::move(view)), onAppear(std::move(appear)), onDisappear(std::move(disappear)) {}
  View content;
  std::function<void()> onAppear;
  std::function<void()> onDisappear;
};

class PresenceNode final : public NodeFor<PresenceNode, WrapperNode, PresenceElement> {
 public:
  using NodeFor::NodeFor;
  ~PresenceNode() override {
    if (onDisappear_) graph().afterUpdate(std::move(onDisappear_));
  }
  void apply(const PresenceElement& element) {
    const bool isFirst = !child_;
    onDisappear_ = element.onDisappear;
    updateChild(element.content);
    if (isFirst && element.onAppear) graph().afterUpdate(element.onAppear);
  }

 private:
  std::function<void()> onDisappear_;
};

class ChangeNode;

class ChangeElement final : public ElementFor<ChangeNode> {
 public:
  using Equal = bool (*)(const std::any&, const std::any&);
  using Action = std::function<void(const std::any&)>;
  ChangeElement(View view, std::any watched, Equal equal, bool initial, Action changeAction)
      : content(std::move(view)),
        value(std::move(watched)),
        isEqual(equal),
        isInitial(initial),
        action(std::move(changeAction)) {}
  View content;
  std::any value;
  Equal isEqual;
  bool isInitial;
  Action action;
};

class ChangeNode final : public NodeFor<ChangeNode, WrapperNode, ChangeElement> {
 public:
  using NodeFor::NodeFor;
  void apply(const ChangeElement& element) {
    const bool hasChanged =
        value_.has_value() ? !element.isEqual(value_, element.value) : element.isInitial;
    value_ = element.value;
    updateChild(element.content);
    if (hasChanged)
      graph().afterUpdate([action = element.action, value = value_] { action(value); });
  }

 private:
  std::any value_;
};

class LocaleNode;

class LocaleElement final : public ElementFor<LocaleNode> {
 public:
  LocaleElement(View view, std::string name)
      : content(std::move(view)), identifier(std::move(name)) {}
  View content;
  std::string identifier;
};

class LocaleNode final : public NodeFor<LocaleNode, WrapperNode, LocaleElement> {
 public:
  using NodeFor::NodeFor;
  void apply(const LocaleElement& element) {
    // What is inside keeps the locale that it was made in.
    if (identifier_ != element.identifier) child_.reset();
    identifier_ = element.identifier;
    const std::string outer = graph().exchangeLocale(identifier_);
    updateChild(element.content);
    graph().exchangeLocale(outer);
  }

 private:
  std::string identifier_;
};

class TimelineNode;

class TimelineElement final : public ElementFor<TimelineNode> {
 public:
  TimelineElement(double seconds, std::function<View()> builder)
      : interval(seconds), content(std::move(builder)) {}
  double interval;
  std::function<View()> content;
};

/// The content of a timeline is a component whose body reads the tick, so that a tick builds
/// nothing else again.
struct TimelineContent {
  std::shared_ptr<Observed<std::uint64_t>> tick;
  std::function<View()> content;
  [[nodiscard]] View body() const {
    (void)tick->get();
    return content();
  }
};

class TimelineNode final : public NodeFor<TimelineNode, WrapperNode, TimelineElement> {
 public:
  using NodeFor::NodeFor;
  void apply(const TimelineElement& element) {
    if (element.interval != interval_) timer_.reset();
    interval_ = element.interval;
    isFresh_ = true;
    updateChild(TimelineContent{tick_, element.content});
  }
  bool advance(bool isVisible) override {
    if (!isVisible) timer_.reset();
    if (isVisible && !timer_) start();
    isFresh_ = isVisible;
    return WrapperNode::advance(isVisible);
  }

 private:
  void start() {
    const auto advanceTick = [tick = tick_] { tick->set(tick->get() + 1); };
    if (!isFresh_) advanceTick();
    timer_ = graph().services().scheduleRepeatingTimer(interval_, advanceTick);
  }

  double interval_ = 0;
  /// Whether the content is from this frame or has been ticking since.
  bool isFresh_ = false;
  std::shared_ptr<Observed<std::uint64_t>> tick_ = std::make_shared<Observed<std::uint64_t>>(0);
  Token timer_;
};

}  // namespace

View View::id(std::string identity) const {
  return View(std::make_shared<IdentityElement>(*this, std::move(identity)));
}

View View::onAppear(std::function<void()> action) const {
  return View(std::make_shared<PresenceElement>(*this, std::move(action), nullptr));
}

View View::onDisappear(std::function<void()> action) const {
  return View(std::make_shared<PresenceElement>(*this, nullptr, std::move(action)));
}

View View::onChangeOf(std::any value, AnyEqual isEqual, bool isInitial,
                      std::function<void(const std::any&)> action) const {
  return View(std::make_shared<ChangeElement>(*this, std::move(value), isEqual, isInitial,
                                              std::move(action)));
}

View View::locale(std::string identifier) const {
  return View(std::make_shared<LocaleElement>(*this, std::move(identifier)));
}

View timeline(double interval, std::function<View()> content) {
  return View(std::make_shared<TimelineElement>(interval, std::move(content)));
}

}  // namespace valdrix::view
