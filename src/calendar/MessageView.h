#pragma once

#include <string>

#include "view/View.h"

namespace valdrix {

/// A line beside a symbol, and a quieter one below it, for when there are no events to show.
struct MessageView {
  std::string symbolName;
  double symbolOpacity = 1;
  std::string message;
  double messageOpacity = 1;
  std::string detail;
  double detailOpacity = 1;
  /// As for `TextStyle`.
  int detailLineLimit = 0;

  [[nodiscard]] view::View body() const;
  bool operator==(const MessageView&) const = default;
};

}  // namespace valdrix
