#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "view/Form.h"
#include "view/Geometry.h"

namespace valdrix::view {

/// A filled, accent-coloured button with a symbol before its title.
struct ProminentButton {
  std::string symbol;
  std::string title;
  std::function<void()> action;
};

/// What a program says of itself, centred in its window, everything 16 points apart with 24 points
/// around: the icon, 96 by 96 points; the name, semibold, with the version in dimmed digits of
/// equal width 4 points below; a dimmed line about the program; a button; at the lower edge a small
/// dimmed line.
struct AboutPanel {
  /// An image of the program's own; where there is none, the icon that the desktop shows for it.
  std::string image;
  std::string name;
  std::string version;
  std::string description;
  ProminentButton button;
  std::string legalNotice;
};

using TabContent = std::variant<Form, AboutPanel>;

/// What a tab shows, for as long as it is on screen: made when it appears and ended when it
/// disappears, with all the state and the timers that it needs meanwhile. The actions that it
/// described end with it. Main thread only.
class TabView {
 public:
  virtual ~TabView() = default;

  /// Asked for again whenever a value that it read has changed.
  [[nodiscard]] virtual TabContent body() const = 0;
};

struct Tab {
  std::string label;
  std::string symbol;
  std::function<std::unique_ptr<TabView>()> make;
};

/// A window of tabs, of which one is on screen at a time. `size` is that of a tab's content, in
/// points.
struct SettingsScene {
  Size size;
  std::vector<Tab> tabs;
  /// Whether the texts of its forms that say more than a title can be selected and copied, by the
  /// pointer and by the keyboard.
  bool hasSelectableTexts = false;
};

}  // namespace valdrix::view
