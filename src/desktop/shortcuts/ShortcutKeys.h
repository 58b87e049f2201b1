#pragma once

#include <string>

#include "desktop/keys/KeySource.h"
#include "desktop/shortcuts/DesktopKeyCustody.h"

namespace valdrix::desktop {

/// Media keys that the desktop's own shortcuts give to commands of this program, for as long as it
/// has been entrusted with them. The commands take another road: nothing is pressed here.
class ShortcutKeys final : public KeySource {
 public:
  /// `custody` outlives this.
  ShortcutKeys(DesktopKeyCustody& custody, Events events)
      : custody_(custody), observer_(custody.observe(std::move(events.changed))) {}

  [[nodiscard]] std::string name() const override { return "desktop-shortcuts"; }
  [[nodiscard]] bool offers(platform::MediaKey key) const override {
    return custody_.sendsCommands() && custody_.state().leaves(key);
  }
  void hold(const std::set<platform::MediaKey>&) override {}
  [[nodiscard]] KeyState state(platform::MediaKey) const override { return KeyState::held; }

 private:
  DesktopKeyCustody& custody_;
  Token observer_;
};

}  // namespace valdrix::desktop
