#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

#include <QColor>
#include <QJsonObject>
#include <QPoint>

#include "tests/display/SysfsTree.h"
#include "tests/e2e/BackgroundWindow.h"
#include "tests/e2e/UserHome.h"
#include "tests/keys/X11KeyDesk.h"
#include "tests/session/PrivateBus.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SoundServer.h"

namespace valdrix::tests {

/// A desktop of its own with the built program on it: an X server with a focused window and a
/// compositing manager, a sound server with one output at half volume, a bus, and a backlight at
/// half brightness. What is in `Services` can be left out.
class AgentDesktop {
 public:
  struct Services {
    bool hasCompositor = true;
    bool hasSound = true;
    bool hasBus = true;
    /// The bus is one that stands already and that this process has as its own.
    bool sharesBus = false;
  };

  explicit AgentDesktop(Services services = {true, true, true, false});
  ~AgentDesktop();
  AgentDesktop(const AgentDesktop&) = delete;
  AgentDesktop& operator=(const AgentDesktop&) = delete;

  static constexpr auto sink = "output";
  static constexpr auto backlight = "panel";

  /// Starts the program and waits until its panel stands there and, with a bus, until it has the
  /// media keys. Whether it does.
  bool startAgent();
  /// Asks the program to end as a session does; its exit code, -1 when it had to be killed.
  int endAgent();
  [[nodiscard]] bool isAgentRunning() const { return agent_ && agent_->isRunning(); }
  /// Runs the program with other words, to its end.
  [[nodiscard]] ChildProcess::Result command(const QStringList& words) const;

  /// Starts the program with other words. It ends with the result.
  [[nodiscard]] std::unique_ptr<ChildProcess> launch(const QStringList& words) const;

  /// What the program says of itself; empty when it does not answer.
  [[nodiscard]] QJsonObject status() const;
  [[nodiscard]] QString presentation() const;
  /// How a media key, by its word in commands, stands: "held", "released", …
  [[nodiscard]] QString keyState(const QString& word) const;
  /// Waits until the panel shows that.
  [[nodiscard]] bool awaitPresentation(const QString& wanted);
  /// The device pixel of the screen, as the user sees it.
  [[nodiscard]] QRgb pixel(QPoint at) { return display().screenshot().pixel(at); }
  /// Waits for a pixel of the screen.
  [[nodiscard]] bool awaitPixel(QPoint at, const std::function<bool(QRgb)>& condition);
  [[nodiscard]] bool awaitVolume(double volume);

  void setPreference(const char* key, const char* value) const;
  [[nodiscard]] QString preferencesFile() const;

  [[nodiscard]] VirtualDisplay& display() { return keys.display(); }

  X11KeyDesk keys;
  SoundServer sound;
  std::unique_ptr<PrivateBus> bus;
  SysfsTree sysfs;
  UserHome home;
  BackgroundWindow background;

 private:
  [[nodiscard]] QProcessEnvironment environment() const;

  const bool sharesBus_;
  std::unique_ptr<ChildProcess> agent_;
};

// The panel's places on the screen, 1512 wide: the notch from 656 to 856, an indicator from 616 to
// 896, the expanded panel from 466 to 1046.
inline constexpr QPoint inNotch{756, 16};
inline constexpr QPoint besideNotch{630, 10};
inline constexpr QPoint farAway{200, 700};

/// Codes of the media keys, as the desk presses them.
namespace key {
inline constexpr std::uint32_t volumeUp = 0;
inline constexpr std::uint32_t volumeDown = 1;
inline constexpr std::uint32_t brightnessUp = 2;
inline constexpr std::uint32_t brightnessDown = 3;
inline constexpr std::uint32_t mute = 7;
}  // namespace key

[[nodiscard]] inline bool isBlack(QRgb color) { return (color & RGB_MASK) == 0; }
[[nodiscard]] inline bool isBackground(QRgb color) {
  return (color & RGB_MASK) == (BackgroundWindow::color & RGB_MASK);
}

}  // namespace valdrix::tests
