#include "desktop/tray/TrayMenu.h"

#include <algorithm>
#include <utility>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QScreen>
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

// An ampersand marks the key that the menu's user may press.
QString textOf(const view::MenuCommand& command) {
  return QString::fromStdString(command.title).replace(u'&', QLatin1String("&&"));
}

bool looksLike(const QAction& action, const view::MenuItem& item) {
  const auto* command = std::get_if<view::MenuCommand>(&item);
  return command ? action.text() == textOf(*command) : action.isSeparator();
}

QAction* insert(const view::MenuItem& item, QAction* before, QMenu& menu) {
  auto* const action = new QAction(&menu);
  const auto* command = std::get_if<view::MenuCommand>(&item);
  action->setSeparator(!command);
  if (command) action->setText(textOf(*command));
  if (command && command->shortcut)
    action->setShortcut(QKeyCombination(
        Qt::ControlModifier, static_cast<Qt::Key>(QChar::toUpper(command->shortcut->key))));
  action->setShortcutVisibleInContextMenu(true);
  menu.insertAction(before, action);
  return action;
}

void setAction(const view::MenuItem& item, QAction& action, QMenu& menu) {
  const auto* command = std::get_if<view::MenuCommand>(&item);
  if (!command) return;
  QObject::disconnect(&action, &QAction::triggered, &menu, nullptr);
  // Queued, so that the menu is gone from the screen and its grabs are over. For the menu, because
  // the action may be gone by then, too.
  QObject::connect(&action, &QAction::triggered, &menu, command->action, Qt::QueuedConnection);
}

/// Puts a menu that is open, and has grown, back onto the screen.
void keepOnScreen(QMenu& menu) {
  if (!menu.isVisible()) return;
  const QRect screen = menu.screen()->geometry();
  const QSize size = menu.sizeHint();
  menu.move(std::max(screen.left(), std::min(menu.x(), screen.right() + 1 - size.width())),
            std::max(screen.top(), std::min(menu.y(), screen.bottom() + 1 - size.height())));
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

// What is still there stays, from the end on, where lines do not come and go: the menu may be open,
// and a line of it chosen.
void TrayMenu::fill() {
  auto former = menu_->actions();
  QAction* next = nullptr;
  for (auto item = content_.items.rbegin(); item != content_.items.rend(); ++item) {
    if (!former.isEmpty() && looksLike(*former.last(), *item)) {
      next = former.takeLast();
    } else {
      qDeleteAll(std::exchange(former, {}));
      next = insert(*item, next, *menu_);
    }
    setAction(*item, *next, *menu_);
  }
  qDeleteAll(former);
  keepOnScreen(*menu_);
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
