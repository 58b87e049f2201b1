#pragma once

#include <string>

#include "view/Form.h"

namespace valdrix {

/// Says in a symbol and a word how a permission stands.
struct StatusBadge {
  enum class State { granted, denied, warning, notDetermined };

  State state;
  std::string label;

  /// What every granted permission shows.
  [[nodiscard]] static StatusBadge granted();
  /// The symbol in its colour with the label.
  [[nodiscard]] view::Badge body() const;
};

}  // namespace valdrix
