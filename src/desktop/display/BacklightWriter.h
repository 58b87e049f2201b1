#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <utility>

#include "desktop/display/BacklightTree.h"
#include "desktop/display/Login1Session.h"

namespace valdrix::desktop {

/// Writes backlights: straight into their file where a rule of the system permits it, which takes
/// microseconds and needs no service, else through the login manager.
class BacklightWriter {
 public:
  /// `root` is where `run/systemd` is found.
  explicit BacklightWriter(std::filesystem::path root) : root_(std::move(root)) {}

  /// Whether there is a way to write, now or, because a login manager belongs to this machine,
  /// later.
  [[nodiscard]] bool canWrite(const Backlight& backlight);
  /// Whether the backlight has the value now.
  [[nodiscard]] bool write(const Backlight& backlight, std::uint64_t brightness);
  /// The same without waiting; `done` is called while `context` lives.
  void tryWrite(const Backlight& backlight, std::uint64_t brightness, QObject& context,
                std::function<void(bool isWritten)> done);

 private:
  std::filesystem::path root_;
  Login1Session session_;
};

}  // namespace valdrix::desktop
