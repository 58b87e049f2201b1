#pragma once

#include <functional>
#include <optional>

#include "observation/Token.h"
#include "view/Spring.h"

namespace valdrix::view {

/// How the changes that are being made now shall reach the screen: with an animation, or at once.
/// Main thread only.
struct Transaction {
  std::optional<Animation> animation;

  /// The transaction of the running code.
  [[nodiscard]] static const Transaction& current();

  /// Calls `block` each time that one transaction is about to give way to another, while the former
  /// is still current, until the token ends. Whoever takes changes over later than they are made
  /// does it then at the latest, so that changes of one turn that arrive differently stay apart.
  [[nodiscard]] static Token observeBoundaries(std::function<void()> block);
};

/// Runs `changes` in a transaction with `animation`: what they change moves with it. A call inside
/// another one wins over it.
void withAnimation(const Animation& animation, const std::function<void()>& changes);

}  // namespace valdrix::view
