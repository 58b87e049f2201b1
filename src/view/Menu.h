#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace valdrix::view {

/// A key that, pressed with the desktop's main command modifier and no other, does what a command
/// does.
struct KeyboardShortcut {
  char key;
  bool operator==(const KeyboardShortcut&) const = default;
};

/// One line of a menu that does something.
struct MenuCommand {
  std::string title;
  std::function<void()> action;
  std::optional<KeyboardShortcut> shortcut{};
};

/// A line between groups of commands.
struct MenuSeparator {};

using MenuItem = std::variant<MenuCommand, MenuSeparator>;

/// A menu from top to bottom.
struct Menu {
  std::vector<MenuItem> items;
};

}  // namespace valdrix::view
