#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "desktop/screens/NotifyingScreens.h"
#include "desktop/wayland/WaylandOutput.h"

namespace valdrix::desktop {

/// The compositor's outputs, with the camera housing of the built-in panel. No output is the main
/// one for a compositor, so the one that it announced first is.
class WaylandScreens final : public NotifyingScreens {
 public:
  /// Both must outlive it. Waits until the compositor has described the outputs that it has.
  WaylandScreens(WaylandConnection& connection, CameraHousings& housings);

  [[nodiscard]] std::vector<platform::Screen> screens() const override;

  /// Where a window with some rectangle hangs.
  struct Place {
    wl_output* output;
    std::uint32_t globalName;  ///< of the output, which no later one has
    WaylandOutput::Description description;
    view::Rect frame;  ///< the output's, in screen coordinates
    bool operator==(const Place&) const = default;
  };
  /// The output with the middle of the rectangle's top edge, else the main one. None without
  /// outputs.
  [[nodiscard]] std::optional<Place> placeFor(const view::Rect& rectangle) const;

 private:
  [[nodiscard]] std::vector<Place> places() const;
  void add(const WaylandGlobal& global);
  void remove(std::uint32_t name);

  WaylandConnection& connection_;
  std::vector<std::unique_ptr<WaylandOutput>> outputs_;
  Token globals_;
};

}  // namespace valdrix::desktop
