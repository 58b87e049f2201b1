#include "desktop/scenes/MenuKeys.h"

#include <QApplication>
#include <QKeyEvent>

namespace valdrix::desktop {

MenuKeys::MenuKeys() { qApp->installEventFilter(this); }

bool MenuKeys::eventFilter(QObject*, QEvent* event) {
  // A menu that is open sees to its keys itself.
  return event->type() == QEvent::KeyPress && !QApplication::activePopupWidget() &&
         press(*static_cast<const QKeyEvent*>(event));
}

bool MenuKeys::press(const QKeyEvent& event) const {
  if (event.modifiers().setFlag(Qt::KeypadModifier, false) != Qt::ControlModifier) return false;
  for (const auto& item : menu_.items) {
    const auto* const command = std::get_if<view::MenuCommand>(&item);
    if (!command || !command->shortcut ||
        event.key() != QChar(command->shortcut->key).toUpper().unicode())
      continue;
    // The action may set another menu.
    if (const auto action = command->action; !event.isAutoRepeat()) action();
    return true;
  }
  return false;
}

}  // namespace valdrix::desktop
