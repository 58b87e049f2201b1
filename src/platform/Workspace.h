#pragma once

#include <string_view>

namespace valdrix::platform {

/// What other programs can be asked to show. Main thread only; never waits for them.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// Has `url` opened by whoever the user prefers for its kind. Whether anybody was asked; text
  /// that is no URL asks nobody. The identifier that ends a link to an event stands there as it is
  /// and may hold spaces, but no control characters. What is in it stays data, whatever it looks
  /// like.
  virtual bool open(std::string_view url) = 0;
};

}  // namespace valdrix::platform
