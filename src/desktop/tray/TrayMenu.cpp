#include "desktop/tray/TrayMenu.h"

#include <utility>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

namespace valdrix::desktop {

namespace {

/// Draws the lines between commands so that they can be seen on dark menus, too.
class MenuStyle final : public QProxyStyle {
 public:
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuItem || !item || item->menuItemType != QStyleOptionMenuItem::Separator)
      return QProxyStyle::drawControl(element, option, painter, widget);
    constexpr int inset = 8;
    constexpr float share = 0.15F;
    QColor line = option->palette.color(QPalette::Text);
    line.setAlphaF(share);
    painter->fillRect(QRect(option->rect.left() + inset, option->rect.center().y(),
                            option->rect.width() - 2 * inset, 1),
                      line);
  }
};

/// A menu without a window of its program: nobody else would see to its shortcuts.
class LoneMenu final : public QMenu {
 public:
  LoneMenu() {
    auto* const style = new MenuStyle;
    style->setParent(this);
    setStyle(style);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const QKeySequence pressed(event->keyCombination());
    for (QAction* action : actions()) {
      if (action->shortcut().isEmpty() || action->shortcut() != pressed) continue;
      close();
      return action->trigger();
    }
    QMenu::keyPressEvent(event);
  }
};

// Other windows know by its type that a menu belongs above them, our own panel among them. Qt sets
// the type of a window that is there already only, and closing a menu ends its window.
void declareType(QMenu& menu) {
  menu.winId();
  for (const bool isMenu : {false, true})
    menu.setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu, isMenu);
}

void add(const view::MenuItem& item, QMenu& menu) {
  const auto* command = std::get_if<view::MenuCommand>(&item);
  if (!command) {
    menu.addSeparator();
    return;
  }
  // An ampersand marks the key that the menu's user may press.
  const auto text = QString::fromStdString(command->title).replace(u'&', QLatin1String("&&"));
  QAction* const action = menu.addAction(text);
  if (command->shortcut)
    action->setShortcut(QKeyCombination(
        Qt::ControlModifier, static_cast<Qt::Key>(QChar::toUpper(command->shortcut->key))));
  action->setShortcutVisibleInContextMenu(true);
  // Queued, so that the menu is gone from the screen and its grabs are over. For the menu, because
  // the action may be gone by then, too.
  QObject::connect(action, &QAction::triggered, &menu, command->action, Qt::QueuedConnection);
}

}  // namespace

TrayMenu::TrayMenu(std::function<void()> aboutToShow) : aboutToShow_(std::move(aboutToShow)) {}

TrayMenu::~TrayMenu() = default;

bool TrayMenu::canPopUp() {
  return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

void TrayMenu::setMenu(const view::Menu& menu) {
  content_ = menu;
  if (menu_) fill();
}

void TrayMenu::fill() {
  menu_->clear();
  for (const auto& item : content_.items) add(item, *menu_);
}

void TrayMenu::popUp(QPoint position, std::function<void()> onClosed) {
  if (aboutToShow_) aboutToShow_();
  if (!menu_) {
    menu_ = std::make_unique<LoneMenu>();
    QObject::connect(menu_.get(), &QMenu::aboutToHide, menu_.get(), [this] {
      if (const auto closed = std::exchange(onClosed_, nullptr)) closed();
    });
    fill();
  }
  if (content_.items.empty()) {
    if (onClosed) onClosed();
    return;
  }
  onClosed_ = std::move(onClosed);
  declareType(*menu_);
  menu_->popup(position);
}

}  // namespace valdrix::desktop
