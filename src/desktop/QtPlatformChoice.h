#pragma once

#include <string>

namespace valdrix::desktop {

/// Which of Qt's platform plugins are to be tried here, as its option `-platform` takes them; empty
/// when there is no display that valdrix can serve, or when QT_QPA_PLATFORM has chosen. Needs no
/// application; waits for the displays' answers.
struct QtPlatformChoice {
  bool hasDisplay = false;
  std::string plugins;

  [[nodiscard]] static QtPlatformChoice make();
};

}  // namespace valdrix::desktop
