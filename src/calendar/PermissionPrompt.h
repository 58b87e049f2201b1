#pragma once

#include <string>

#include "view/View.h"

namespace valdrix {

/// Says that the calendar cannot be read, and where that can be changed.
struct PermissionPrompt {
  std::string message;

  [[nodiscard]] view::View body() const;
  bool operator==(const PermissionPrompt&) const = default;
};

}  // namespace valdrix
