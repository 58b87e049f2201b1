#pragma once

// Included at the end of View.h: how a component becomes a node of the tree.

#include <concepts>
#include <memory>
#include <optional>
#include <utility>

#include "observation/Observer.h"
#include "view/Node.h"
#include "view/View.h"

namespace valdrix::view {

/// The node of a component: watches what the body reads and evaluates it again when that changes.
class ComponentNodeBase : public WrapperNode {
 public:
  ComponentNodeBase(ViewGraph& graph, Node* parent);
  ~ComponentNodeBase() override;

  /// Runs the body and takes its result over.
  void evaluate();

 protected:
  [[nodiscard]] virtual View makeBody() = 0;
  /// Keeps `state` until the actions that are waiting now have run: they may refer to it, and some,
  /// such as that the pointer left, run because the component is gone.
  void outlive(std::shared_ptr<void> state);

 private:
  /// The locale around it, for when it is evaluated on its own.
  const std::string locale_;
  Observer observer_;
};

template <class C>
class ComponentNode;

template <Component C>
class ComponentElement final : public ElementFor<ComponentNode<C>> {
 public:
  explicit ComponentElement(C value) : component(std::move(value)) {}
  C component;
};

template <class C>
class ComponentNode final
    : public NodeFor<ComponentNode<C>, ComponentNodeBase, ComponentElement<C>> {
 public:
  using Base = NodeFor<ComponentNode<C>, ComponentNodeBase, ComponentElement<C>>;
  using Base::Base;
  ~ComponentNode() override {
    if constexpr (StatefulComponent<C>) this->outlive(std::move(state_));
  }

  void apply(const ComponentElement<C>& element) {
    if constexpr (std::equality_comparable<C>)
      if (component_ && *component_ == element.component) return;
    component_.emplace(element.component);
    this->evaluate();
  }

 protected:
  [[nodiscard]] View makeBody() override {
    if constexpr (StatefulComponent<C>)
      return component_->body(*state_);
    else
      return component_->body();
  }

 private:
  [[nodiscard]] static auto makeState() {
    if constexpr (StatefulComponent<C>)
      return std::make_shared<typename C::State>();
    else
      return nullptr;
  }

  std::optional<C> component_;
  decltype(makeState()) state_ = makeState();
};

template <Component C>
View::View(C component)
    : element_(std::make_shared<const ComponentElement<C>>(std::move(component))) {}

}  // namespace valdrix::view
