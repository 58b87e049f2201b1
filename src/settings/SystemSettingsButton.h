#pragma once

#include <functional>
#include <string>

#include "view/Form.h"

namespace valdrix {

/// The row below a missing permission that leads to where it is given.
[[nodiscard]] view::FormRow systemSettingsButton(std::string id, std::function<void()> open);

}  // namespace valdrix
