#pragma once

#include "desktop/keys/KeyCustody.h"
#include "desktop/keys/MediaKeyTaps.h"
#include "desktop/shortcuts/DesktopIndicator.h"
#include "observation/Observed.h"
#include "observation/Token.h"
#include "view/SettingsScene.h"

namespace valdrix::desktop {

/// Who has the volume and brightness keys, how valdrix gets them, and where the desktop's own
/// indicator gets in the way.
class KeyAccessTab final : public view::TabView {
 public:
  /// `keys` and `custody` outlive this. `custody` is null, and `indicator` too, where the desktop
  /// has none.
  KeyAccessTab(MediaKeyTaps& keys, KeyCustody* custody, const DesktopIndicator* indicator);

  [[nodiscard]] view::TabContent body() const override;

 private:
  struct State {
    KeyAccount account;
    KeyCustody::State custody;
    bool operator==(const State&) const = default;
  };

  void refresh();
  [[nodiscard]] view::FormSection keys() const;
  [[nodiscard]] view::FormSection custody() const;
  [[nodiscard]] view::FormSection commands() const;
  [[nodiscard]] view::FormSection indicator() const;

  MediaKeyTaps& keys_;
  KeyCustody* custody_;
  const DesktopIndicator* indicator_;
  Observed<State> state_;
  Token accountObserver_;
  Token custodyObserver_;
};

}  // namespace valdrix::desktop
