#pragma once

#include <map>

#include "platform/Displays.h"

namespace valdrix::sim {

/// Displays that come and go. IDs are the caller's choice, in the order of which they are listed.
class SimDisplays : public platform::Displays {
 public:
  [[nodiscard]] std::optional<std::vector<platform::DisplayID>> getActiveDisplayList()
      const override;
  [[nodiscard]] bool isBuiltin(platform::DisplayID display) const override;

  void plug(platform::DisplayID display, bool isBuiltin);
  void unplug(platform::DisplayID display) { isBuiltin_.erase(display); }
  [[nodiscard]] bool isActive(platform::DisplayID display) const {
    return isBuiltin_.contains(display);
  }
  /// Whether the list cannot be had.
  void setFailing(bool isFailing) { isFailing_ = isFailing; }

 private:
  std::map<platform::DisplayID, bool> isBuiltin_;
  bool isFailing_ = false;
};

}  // namespace valdrix::sim
