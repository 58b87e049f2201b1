#pragma once

#include <string_view>
#include <vector>

#include "preferences/BoundPreferences.h"
#include "settings/AccessibilityStatusView.h"
#include "settings/SettingsEnvironment.h"
#include "view/SettingsScene.h"

namespace valdrix {

/// Which indicators appear, for how long, and whether they can.
class HUDsTab final : public view::TabView {
 public:
  explicit HUDsTab(const SettingsEnvironment& environment);

  [[nodiscard]] view::TabContent body() const override;

 private:
  [[nodiscard]] view::Toggle toggle(const char* title, std::string_view key) const;
  [[nodiscard]] std::vector<view::FormRow> durationRows() const;

  BoundPreferences preferences_;
  AccessibilityStatusView accessibilityStatusView_;
};

}  // namespace valdrix
