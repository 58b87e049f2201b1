#pragma once

#include <functional>

namespace valdrix::desktop {

/// Asks the user whether valdrix may read their calendars. Main thread only.
class AccessPrompt {
 public:
  enum class Answer {
    none,  ///< not now: the user put the question off
    allowed,
    refused,
  };

  virtual ~AccessPrompt() = default;

  /// Shows the question and returns at once; `onAnswer` is called once when the user is done with
  /// it. A question that is still open comes to the front instead, and `onAnswer` replaces the one
  /// before.
  virtual void ask(std::function<void(Answer answer)> onAnswer) = 0;
};

}  // namespace valdrix::desktop
