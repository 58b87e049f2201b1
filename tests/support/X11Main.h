#pragma once

#include "tests/support/VirtualDisplay.h"

namespace valdrix::tests {

/// The X server of this test program, started before its QGuiApplication.
[[nodiscard]] VirtualDisplay& display();

}  // namespace valdrix::tests
