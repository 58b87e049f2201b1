#pragma once

#include <string_view>
#include <vector>

#include "observation/Listeners.h"
#include "platform/Screens.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated screens. The first one is the main screen.
class SimScreens final : public platform::Screens {
 public:
  explicit SimScreens(Trace& trace) : trace_(trace) {}

  [[nodiscard]] std::vector<platform::Screen> screens() const override { return screens_; }
  [[nodiscard]] std::optional<platform::Screen> mainScreen() const override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

  /// The screens from now on; observers are told when anything is different.
  void setScreens(std::vector<platform::Screen> screens);
  /// Adds a screen, or replaces the one of the same name.
  void plugIn(const platform::Screen& screen);
  void unplug(std::string_view name);

  /// `screen` with a housing of `width` points in the middle of its top edge that reaches `inset`
  /// points down.
  [[nodiscard]] static platform::Screen withHousing(platform::Screen screen, double width,
                                                    double inset);

 private:
  Trace& trace_;
  std::vector<platform::Screen> screens_;
  Listeners<> observers_;
};

}  // namespace valdrix::sim
