#pragma once

#include <functional>
#include <optional>

#include "view/Spring.h"

namespace valdrix::view {

/// How the changes that are being made now shall reach the screen: with an animation, or at once.
/// Every `withAnimation` is a transaction of its own; all changes outside one share the immediate
/// transaction. Main thread only.
struct Transaction {
  std::optional<Animation> animation;
  bool operator==(const Transaction&) const = default;

  /// The transaction of the running code.
  [[nodiscard]] static const Transaction& current();
};

/// Runs `changes` in a transaction with `animation`: what they change moves with it. A call inside
/// another one wins over it.
void withAnimation(const Animation& animation, const std::function<void()>& changes);

}  // namespace valdrix::view
