#pragma once

#include <functional>

#include "desktop/privacy/DesktopIndicator.h"
#include "desktop/privacy/MediaKeyReport.h"
#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/Accessibility.h"
#include "platform/RunLoop.h"
#include "view/SettingsScene.h"

namespace valdrix::desktop {

/// Who has the volume and brightness keys, how valdrix gets them, and where the desktop's own
/// indicator gets in the way. Nobody tells when keys change hands, so it looks again every 1.5
/// seconds for as long as it lives.
class KeyAccessTab final : public view::TabView {
 public:
  /// The ports outlive this. `indicator` is the desktop's own, if it has one.
  KeyAccessTab(platform::Accessibility& accessibility, platform::RunLoop& runLoop,
               std::function<MediaKeyReport()> report, const DesktopIndicator* indicator);

  [[nodiscard]] view::TabContent body() const override;

 private:
  struct State {
    bool isTrusted = false;
    MediaKeyReport keys;
    bool operator==(const State&) const = default;
  };

  void refresh();
  [[nodiscard]] view::FormSection keys() const;
  [[nodiscard]] view::FormSection commands() const;
  [[nodiscard]] view::FormSection indicator() const;

  platform::Accessibility& accessibility_;
  std::function<MediaKeyReport()> report_;
  const DesktopIndicator* indicator_;
  Observed<State> state_;
  Token timer_;
};

}  // namespace valdrix::desktop
