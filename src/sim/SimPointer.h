#pragma once

#include <cstdint>
#include <vector>

#include "observation/Listeners.h"
#include "platform/Pointer.h"

namespace valdrix::sim {

class SimPanelWindow;

/// The simulated pointer. Uses all the freedom that the port's contract leaves an adapter: motion
/// that neither begins nor ends in the tracked rectangle of a shown panel is not reported. Must
/// outlive the panel windows.
class SimPointer final : public platform::Pointer {
 public:
  [[nodiscard]] Token addGlobalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                            std::function<void()> handler) override;
  [[nodiscard]] Token addLocalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                           std::function<void()> handler) override;
  [[nodiscard]] view::Point mouseLocation() const override { return location_; }

  /// Moves to `to` (screen coordinates, origin bottom left) with no button held. Staying where it
  /// is is no motion.
  void move(view::Point to) { moveTo(to, platform::eventMask::mouseMoved, false); }
  /// The same in the middle of a drag that began in another program's window, which is told of all
  /// motion until the button is released.
  void drag(view::Point to, bool withRightButton = false);
  /// The main button goes down or up. Whether a panel was told; otherwise what lies below was.
  bool press();
  bool release();
  bool click();

  /// The shown panel in front of all others; null without one.
  [[nodiscard]] SimPanelWindow* frontWindow() const {
    return windows_.empty() ? nullptr : windows_.back();
  }
  /// Whether monitors can be installed; they can at first.
  void setAllowsMonitors(bool allows) { allowsMonitors_ = allows; }

 private:
  friend class SimPanelWindow;
  using Monitors = Listeners<std::uint32_t>;

  [[nodiscard]] Token add(Monitors& monitors, std::uint32_t mask, std::function<void()> handler);
  void moveTo(view::Point to, std::uint32_t kind, bool isForeignDrag);
  [[nodiscard]] SimPanelWindow* windowUnderPointer() const;

  bool allowsMonitors_ = true;
  view::Point location_;
  Monitors globalMonitors_;
  Monitors localMonitors_;
  std::vector<SimPanelWindow*> windows_;  ///< the frontmost last
};

}  // namespace valdrix::sim
