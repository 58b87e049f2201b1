#include "view/Transaction.h"

#include <utility>

namespace valdrix::view {

namespace {

Transaction& running() {
  thread_local Transaction transaction;
  return transaction;
}

}  // namespace

const Transaction& Transaction::current() { return running(); }

void withAnimation(const Animation& animation, const std::function<void()>& changes) {
  struct Restore {
    Transaction outer = std::exchange(running(), Transaction{});
    ~Restore() { running() = std::move(outer); }
  } restore;
  running().animation = animation;
  changes();
}

}  // namespace valdrix::view
