#include "view/ComponentNode.h"

#include "view/ViewGraph.h"

namespace valdrix::view {

ComponentNodeBase::ComponentNodeBase(ViewGraph& graph, Node* parent)
    : WrapperNode(graph, parent),
      observer_({.willChange = [this] { this->graph().componentWillChange(); },
                 .didChange = [this] { this->graph().componentDidChange(*this); }}) {}

ComponentNodeBase::~ComponentNodeBase() { graph().componentGone(*this); }

void ComponentNodeBase::evaluate() {
  graph().componentGone(*this);
  if (std::exchange(isFirst_, false)) locale_ = graph().locale();
  const std::string outer = graph().exchangeLocale(locale_);
  const View body = observer_.track([this] { return makeBody(); });
  updateChild(body);
  graph().exchangeLocale(outer);
}

}  // namespace valdrix::view
