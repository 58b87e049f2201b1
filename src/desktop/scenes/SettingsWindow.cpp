#include "desktop/scenes/SettingsWindow.h"

#include <cmath>
#include <utility>

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include "desktop/scenes/AboutView.h"
#include "desktop/scenes/BundledImage.h"
#include "desktop/scenes/FormStyle.h"
#include "desktop/scenes/FormView.h"
#include "desktop/scenes/SettingsTabBar.h"
#include "desktop/session/ActivationToken.h"
#include "desktop/session/SoftwareSurfaces.h"

namespace valdrix::desktop {

namespace {

constexpr int barMargin = 8;

/// Whether only a token that comes from the user's own input brings a window to the front.
bool needsToken() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

}  // namespace

SettingsWindow::SettingsWindow(view::SettingsScene scene, Handlers handlers)
    : scene_(std::move(scene)),
      handlers_(std::move(handlers)),
      tabs_(new SettingsTabBar(scene_.tabs)),
      place_(new QWidget) {
  setWindowIcon(bundledImage("AppIcon"));
  place_->setFixedSize(static_cast<int>(std::lround(scene_.size.width)),
                       static_cast<int>(std::lround(scene_.size.height)));
  auto* const content = new QVBoxLayout(place_);
  content->setContentsMargins(0, 0, 0, 0);
  auto* const parts = new QVBoxLayout(this);
  parts->setContentsMargins(0, barMargin, 0, 0);
  parts->setSpacing(barMargin);
  parts->setSizeConstraint(QLayout::SetFixedSize);
  parts->addWidget(tabs_, 0, Qt::AlignHCenter);
  parts->addWidget(place_);
  connect(tabs_, &QTabBar::currentChanged, this, [this] {
    if (isVisible()) beginTab();
  });
  addKeys();
}

SettingsWindow::~SettingsWindow() {
  // Its children's actions belong to the tab.
  endTab();
}

void SettingsWindow::addKeys() {
  const auto add = [this](const QKeySequence& sequence, auto act) {
    connect(new QShortcut(sequence, this), &QShortcut::activated, this, act);
  };
  add(Qt::Key_Escape, [this] { close(); });
  add(Qt::CTRL | Qt::Key_W, [this] { close(); });
  for (const int key : {int{Qt::Key_Tab}, int{Qt::Key_PageDown}})
    add(QKeySequence(Qt::CTRL | Qt::Key(key)), [this] { stepTab(1); });
  add(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, [this] { stepTab(-1); });
  add(Qt::CTRL | Qt::Key_PageUp, [this] { stepTab(-1); });
}

void SettingsWindow::stepTab(int by) {
  const int count = tabs_->count();
  tabs_->setCurrentIndex((tabs_->currentIndex() + by + count) % count);
}

std::size_t SettingsWindow::tab() const { return static_cast<std::size_t>(tabs_->currentIndex()); }

void SettingsWindow::selectTab(std::size_t index) {
  if (index < scene_.tabs.size()) tabs_->setCurrentIndex(static_cast<int>(index));
}

void SettingsWindow::open() {
  // A compositor takes no notice of a wish without a token, but a new window is in front.
  if (isVisible() && !isActiveWindow() && needsToken() && !ActivationToken::isAtHand()) hide();
  if (!isVisible()) {
    adjustSize();
    move(screen()->availableGeometry().center() - rect().center());
    withSoftwareSurfaces([this] { QWidget::show(); });
  }
  setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
  if (handlers_.bringToFront) handlers_.bringToFront(winId());
}

void SettingsWindow::showEvent(QShowEvent* event) {
  // One that comes from the window system ends an iconification, in which the tab was kept.
  if (!event->spontaneous()) beginTab();
}

void SettingsWindow::hideEvent(QHideEvent* event) {
  if (!event->spontaneous()) endTab();
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  handlers_.closed();
}

void SettingsWindow::beginTab() {
  endTab();
  const view::Tab& selected = scene_.tabs[tab()];
  setWindowTitle("valdrix – " + QString::fromStdString(selected.label));
  shown_.emplace();
  shown_->view = selected.make();
  shown_->content = std::make_unique<LiveValue<view::TabContent>>(
      [shown = shown_->view.get()] { return shown->body(); },
      [this](const view::TabContent& content) { show(content); });
  shown_->content->refresh();
}

void SettingsWindow::endTab() {
  form_.reset();
  about_.reset();
  shown_.reset();
}

void SettingsWindow::show(const view::TabContent& content) {
  const auto didEdit = [this] { shown_->content->refreshSoon(); };
  if (const auto* const form = std::get_if<view::Form>(&content)) {
    about_.reset();
    show(form_, *form, FormContext{didEdit, scene_.hasSelectableTexts});
  } else {
    form_.reset();
    show(about_, std::get<view::AboutPanel>(content), didEdit);
  }
}

template <class View, class Content, class Context>
void SettingsWindow::show(std::unique_ptr<View>& shown, const Content& content,
                          const Context& context) {
  if (shown) return shown->show(content);
  shown = std::make_unique<View>(context);
  place_->layout()->addWidget(shown.get());
  shown->show(content);
  // A layout would show it a turn later.
  shown->setVisible(true);
}

// The keys that scroll do so also while the tabs have the focus.
void SettingsWindow::keyPressEvent(QKeyEvent* event) {
  if (!form_ || !form_->scrollBy(*event)) QWidget::keyPressEvent(event);
}

// A line between the tabs and what they show.
void SettingsWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  formStyle::paintHairline(painter, palette(), place_->geometry());
}

}  // namespace valdrix::desktop
