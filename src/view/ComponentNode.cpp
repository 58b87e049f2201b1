#include "view/ComponentNode.h"

#include "view/ViewGraph.h"

namespace valdrix::view {

ComponentNodeBase::ComponentNodeBase(ViewGraph& graph, Node* parent)
    : WrapperNode(graph, parent),
      locale_(graph.locale()),
      observer_([this] { this->graph().componentDidChange(*this); }) {}

ComponentNodeBase::~ComponentNodeBase() { graph().componentGone(*this); }

void ComponentNodeBase::evaluate() {
  graph().componentGone(*this);
  const std::string outer = graph().exchangeLocale(locale_);
  const View body = observer_.track([this] { return makeBody(); });
  sizesChanged();
  updateChild(body);
  graph().exchangeLocale(outer);
}

void ComponentNodeBase::outlive(std::shared_ptr<void> state) {
  graph().afterUpdate([state = std::move(state)] {});
}

}  // namespace valdrix::view
