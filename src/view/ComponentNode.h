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

 private:
  std::string locale_;
  bool isFirst_ = true;
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

  void apply(const ComponentElement<C>& element) {
    if constexpr (std::equality_comparable<C>)
      if (component_ && *component_ == element.component) return;
    component_.emplace(element.component);
    this->evaluate();
  }

 protected:
  [[nodiscard]] View makeBody() override {
    if constexpr (StatefulComponent<C>)
      return component_->body(state_);
    else
      return component_->body();
  }

 private:
  struct NoState {};
  template <class T, bool hasState>
  struct StateOf {
    using Type = NoState;
  };
  template <class T>
  struct StateOf<T, true> {
    using Type = typename T::State;
  };

  std::optional<C> component_;
  [[no_unique_address]] typename StateOf<C, StatefulComponent<C>>::Type state_;
};

template <Component C>
View::View(C component)
    : element_(std::make_shared<const ComponentElement<C>>(std::move(component))) {}

}  // namespace valdrix::view
