#include "view/Transaction.h"

#include <utility>

#include "observation/Listeners.h"

namespace valdrix::view {

namespace {

Transaction& running() {
  static Transaction transaction;
  return transaction;
}

Listeners<>& boundaries() {
  static Listeners<> listeners;
  return listeners;
}

}  // namespace

const Transaction& Transaction::current() { return running(); }

Token Transaction::observeBoundaries(std::function<void()> block) {
  return boundaries().add(std::move(block));
}

void withAnimation(const Animation& animation, const std::function<void()>& changes) {
  boundaries().notify();
  const Transaction outer = std::exchange(running(), Transaction{animation});
  changes();
  boundaries().notify();
  running() = outer;
}

}  // namespace valdrix::view
