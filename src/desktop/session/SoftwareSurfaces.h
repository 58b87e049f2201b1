#pragma once

#include <functional>

namespace valdrix::desktop {

/// Runs `block`, in which windows may be shown, and keeps Qt's plugin for Wayland from loading the
/// graphics library for the first of them. Our windows are painted in memory, and what the library
/// takes for itself, 10 MB where it draws by the processor, would stay until the process ends. Of
/// no effect on other platforms, or where the environment chooses how windows are drawn.
void withSoftwareSurfaces(const std::function<void()>& block);

}  // namespace valdrix::desktop
