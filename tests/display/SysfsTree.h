#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include <QTemporaryDir>

namespace valdrix::tests {

/// The kernel's device tree as far as displays go, in a folder of its own that every user may read.
class SysfsTree {
 public:
  SysfsTree();

  [[nodiscard]] std::filesystem::path root() const { return root_; }

  /// Adds or changes a connector of a graphics device: `addConnector("gpu0", "card0-eDP-1", …)`.
  void setConnector(const std::string& device, const std::string& name, const std::string& status,
                    const std::string& enabled);
  /// Adds a backlight below `device`, a path such as `gpu0`, `gpu0/drm/card0/card0-eDP-1`; below no
  /// device when that is empty.
  void addBacklight(const std::string& name, const std::string& type, const std::string& device,
                    std::uint64_t maxBrightness = 960);

  [[nodiscard]] std::filesystem::path backlightFile(const std::string& name,
                                                    const std::string& file) const;
  /// What a program, or the hardware, makes of the brightness.
  void setBrightness(const std::string& name, std::uint64_t brightness);
  [[nodiscard]] std::uint64_t brightness(const std::string& name) const;
  /// Takes from, or gives to, ordinary users the right to write the brightness.
  void setWritable(const std::string& name, bool isWritable);

  static void write(const std::filesystem::path& file, const std::string& text);

 private:
  QTemporaryDir temporary_;
  std::filesystem::path root_ = temporary_.path().toStdString();
};

}  // namespace valdrix::tests
