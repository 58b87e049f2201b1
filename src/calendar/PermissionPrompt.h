#pragma once

#include <string>
#include <string_view>

#include "view/View.h"

namespace valdrix {

/// What there is to do until the user has been asked; the prompt says it, and a button does it.
inline constexpr std::string_view allowCalendarAccess = "Autoriser l'accès au calendrier";

/// Says that the calendar cannot be read, and where that can be changed.
struct PermissionPrompt {
  std::string message;

  [[nodiscard]] view::View body() const;
  bool operator==(const PermissionPrompt&) const = default;
};

}  // namespace valdrix
