#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace valdrix::desktop {

/// A graphics card's output, as the kernel describes it.
struct Connector {
  std::string name;  ///< card0-eDP-1
  bool isConnected = false;
  bool isEnabled = false;  ///< a picture is sent; some drivers never say so

  /// The card: card0.
  [[nodiscard]] std::string card() const;
  /// Whether panels of laptops hang on connectors of this kind: eDP, LVDS or DSI.
  [[nodiscard]] bool isPanel() const;
};

/// A device of the kernel's backlight class.
struct Backlight {
  /// Who drives it. The kernel's own advice: prefer them in this order.
  enum class Type { firmware, platform, raw };

  std::string name;
  std::filesystem::path folder;
  Type type = Type::raw;
  std::uint64_t maxBrightness = 0;  ///< 0: unreadable
  std::string connector;            ///< the one that it hangs on, where the driver says so
  std::vector<std::string> cards;   ///< those of the graphics device that it belongs to
  bool isAttached = false;          ///< on a cable: a monitor's, by USB or its data channel
};

/// All that tells which backlight is whose.
struct BacklightTree {
  std::vector<Backlight> backlights;
  std::vector<Connector> connectors;
};

/// Reads the tree below `sysfs`; nothing when there is no sysfs. Asks no monitor anything.
[[nodiscard]] std::optional<BacklightTree> readBacklightTree(const std::filesystem::path& sysfs);

/// The number that a file of sysfs holds. An empty file, which a reader may see while another
/// process writes, holds none.
[[nodiscard]] std::optional<std::uint64_t> readSysfsNumber(const std::filesystem::path& file);

}  // namespace valdrix::desktop
