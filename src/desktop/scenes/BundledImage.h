#pragma once

#include <string>

#include <QIcon>

namespace valdrix::desktop {

/// An image that the program brings along, crisp at any size. Where there is none of that name, or
/// nothing that can draw it: the icon that the desktop's theme has for the program.
[[nodiscard]] QIcon bundledImage(const std::string& name);

}  // namespace valdrix::desktop
