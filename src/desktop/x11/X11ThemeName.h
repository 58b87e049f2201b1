#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "desktop/x11/X11Connection.h"
#include "desktop/x11/X11Manager.h"
#include "observation/Listeners.h"

namespace valdrix::desktop {

/// The text of that name among the settings that a manager published, as the XSETTINGS protocol
/// lays them out. Empty when it is not there, or no text, or the settings break off before it.
[[nodiscard]] std::string xsettingsText(std::span<const std::uint8_t> settings,
                                        std::string_view name);

/// The name of the theme that the desktop's settings manager wants programs to use, by the
/// XSETTINGS protocol. Managers may come, go and replace each other.
class X11ThemeName {
 public:
  /// `connection` must outlive it.
  explicit X11ThemeName(X11Connection& connection);

  /// Empty without a manager, or when it does not say.
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] Token observeChanges(std::function<void()> block) {
    return observers_.add(std::move(block));
  }

 private:
  void follow();
  void read();

  X11Connection& connection_;
  X11Manager manager_;
  xcb_atom_t property_ = XCB_ATOM_NONE;
  std::string name_;
  Listeners<> observers_;
  Token managerWatch_;
  Token eventHandler_;
};

}  // namespace valdrix::desktop
