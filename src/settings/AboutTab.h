#pragma once

#include <string>

#include "settings/SettingsEnvironment.h"
#include "view/SettingsScene.h"

namespace valdrix {

/// What the program is, which version runs, and where it comes from.
class AboutTab final : public view::TabView {
 public:
  AboutTab(const SettingsEnvironment& environment, std::string websiteURL);

  [[nodiscard]] view::TabContent body() const override;

 private:
  platform::Workspace& workspace_;
  const platform::Bundle& bundle_;
  std::string websiteURL_;
};

}  // namespace valdrix
