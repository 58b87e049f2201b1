#include "desktop/x11/X11PanelWindow.h"

#include <utility>

#include "desktop/x11/X11Cursor.h"
#include "desktop/x11/X11Manager.h"
#include "desktop/x11/X11Overlay.h"
#include "desktop/x11/X11Screens.h"
#include "desktop/x11/X11WindowNews.h"
#include "view/HostingView.h"

namespace valdrix::desktop {

namespace {

// From the last frame of an animation until the window shrinks: longer than a compositor keeps a
// frame back, so that a window's new size and its picture are shown together, and than it takes to
// press a key again.
constexpr int millisecondsToRest = 200;

}  // namespace

X11PanelWindow::X11PanelWindow(const X11PanelServices& services, const view::Rect& contentRectangle,
                               const platform::PanelConfiguration& configuration)
    : services_(services),
      contentRectangle_(contentRectangle),
      trackedRectangle_{0, 0, contentRectangle.width, contentRectangle.height},
      surface_(services.connection, services.compositing, configuration.hasShadow),
      painter_(services.textMetrics),
      pacer_([this] { drawFrame(); }),
      inputRegion_(
          services.connection, services.pointer, surface_,
          {[this](QPoint position, bool isInside) { pointerMoved(position, isInside); },
           [this](QPoint position, bool isPressed) { pointerPressed(position, isPressed); },
           [this](QPoint position) { requestMenu(position); }}),
      stackingGuard_(services.connection, services.windowNews, [this] { raise(); }) {
  if (!services_.connection.isUsable()) return;
  restTimer_.setSingleShot(true);
  restTimer_.setInterval(millisecondsToRest);
  restTimer_.callOnTimeout([this] { giveRoomBack(); });
  inputRegion_.setIgnoresMouseEvents(configuration.ignoresMouseEvents);
  place();
  eventHandler_ = services_.connection.addEventHandler(
      [this](const xcb_generic_event_t& event) { handle(event); });
  newsObserver_ = services_.windowNews.observe([this] { lookAtOverlay(); });
  screensObserver_ = services_.screens.observeChanges([this] { place(); });
  compositingObserver_ = services_.compositing.observeChanges([this] {
    surface_.updateOutline();
    inputRegion_.apply();
    inputRegion_.updateWindows();
    lookAtOverlay();
  });
  cursorObserver_ = services_.cursor.observeChanges([this] { updateCursor(); });
}

X11PanelWindow::~X11PanelWindow() { setContentView(nullptr); }

// Finds the window's place on the screens as they are now.
void X11PanelWindow::place() {
  const auto layout = ScreenLayout::current();
  const auto* screen = layout.screenFor(contentRectangle_);
  if (!screen) return;
  const QRect frame = ScreenLayout::toDevice(contentRectangle_, *screen);
  if (hasScreen_ && *screen == screen_ && frame == surface_.frame()) return;
  hasScreen_ = true;
  screen_ = *screen;
  pacer_.setRefreshRate(screen_.refreshRate);
  surface_.setFrame(frame);
  inputRegion_.setFrame(frame);
  applyTrackedRectangle();
  painter_.setPictures(frame.size(), screen_.scale);
  if (isShown_) drawFrame();
}

void X11PanelWindow::setContentView(view::HostingView* content) {
  leaveContent();
  if (content_) content_->setOnNeedsFrame({});
  content_ = content;
  painter_.setContent(content);
  pacer_.cancel();
  if (!content_) return;
  content_->setOnNeedsFrame([this] {
    if (isShown_) pacer_.request();
  });
  if (isShown_) pacer_.request();
}

void X11PanelWindow::orderFrontRegardless() {
  if (!surface_.window() || !hasScreen_) return;
  isShown_ = true;
  drawFrame();
  giveRoomBack();
  raise();
  surface_.show();
  inputRegion_.show();
  surface_.present(painter_.painted());
  applyTrackedRectangle();
  lookAtOverlay();
  services_.connection.flush();
}

// A bar is at the screen's edge, as the panel is.
void X11PanelWindow::lookAtOverlay() {
  if (isShown_) services_.overlay.look({trackedPixels_.center().x(), trackedPixels_.top()});
}

void X11PanelWindow::raise() {
  inputRegion_.raise();
  surface_.stackBehind(inputRegion_.window());
  services_.connection.flush();
}

void X11PanelWindow::orderOut() {
  if (!isShown_) return;
  isShown_ = false;
  pacer_.cancel();
  restTimer_.stop();
  stackingGuard_.stop();
  inputRegion_.hide();
  leaveContent();
  surface_.hide();
  services_.connection.flush();
}

bool X11PanelWindow::ignoresMouseEvents() const { return inputRegion_.ignoresMouseEvents(); }

void X11PanelWindow::setIgnoresMouseEvents(bool ignores) {
  if (ignores) leaveContent();
  inputRegion_.setIgnoresMouseEvents(ignores);
}

void X11PanelWindow::setTrackedRectangle(const view::Rect& rectangle) {
  trackedRectangle_ = rectangle;
  applyTrackedRectangle();
}

void X11PanelWindow::applyTrackedRectangle() {
  if (!hasScreen_) return;
  const view::Rect onScreen{contentRectangle_.minX() + trackedRectangle_.x,
                            contentRectangle_.maxY() - trackedRectangle_.maxY(),
                            trackedRectangle_.width, trackedRectangle_.height};
  trackedPixels_ = ScreenLayout::pixelsInside(onScreen, screen_);
  inputRegion_.setRectangle(trackedPixels_);
  if (!isShown_) return;
  makeRoom();
  stackingGuard_.start(surface_.window(), inputRegion_.window(), trackedPixels_, screen_.device);
}

void X11PanelWindow::drawFrame() {
  const QRegion area = painter_.prepareFrame(1 / screen_.refreshRate);
  if (!area.isEmpty()) {
    painter_.paint(surface_.picture(), area);
    ++framesDrawn_;
    ++services_.framesDrawn;
  }
  // The last frame of an animation may look like the one before.
  makeRoom();
  if (!area.isEmpty()) surface_.present(area);
}

// What the window must cover once nothing moves.
QRect X11PanelWindow::target() const {
  return inputRegion_.bounds().translated(-surface_.frame().topLeft());
}

void X11PanelWindow::makeRoom() {
  const QRect painted = painter_.painted();
  if (surface_.follow(painted, target())) {
    inputRegion_.apply();
    services_.connection.flush();
  }
  const bool isMoving = content_ && content_->needsFrame();
  if (isMoving || surface_.fits(painted, target()))
    restTimer_.stop();
  else
    restTimer_.start();
}

void X11PanelWindow::giveRoomBack() {
  if (!surface_.settle(painter_.painted(), target())) return;
  inputRegion_.apply();
  services_.connection.flush();
}

void X11PanelWindow::handle(const xcb_generic_event_t& event) {
  if (eventType(event) != XCB_EXPOSE) return;
  const auto& expose = eventAs<xcb_expose_event_t>(event);
  // The last of a series. Its place is that of a window that may have changed since then.
  if (expose.window == surface_.window() && expose.count == 0) surface_.present(painter_.painted());
}

view::Point X11PanelWindow::toContent(QPoint position) const {
  const view::Rect frame = content_->frame();
  return {(position.x() - surface_.frame().left()) / screen_.scale - frame.x,
          (position.y() - surface_.frame().top()) / screen_.scale - frame.y};
}

void X11PanelWindow::pointerMoved(QPoint position, bool isInside) {
  if (!content_) return;
  if (isInside && !ignoresMouseEvents()) {
    isPointerInContent_ = true;
    content_->pointerMoved(toContent(position));
  } else {
    leaveContent();
  }
}

void X11PanelWindow::pointerPressed(QPoint position, bool isPressed) {
  if (!content_) return;
  if (isPressed)
    content_->pointerPressed(toContent(position));
  else
    content_->pointerReleased(toContent(position));
}

void X11PanelWindow::requestMenu(QPoint position) {
  if (!services_.onMenuRequested) return;
  const QPoint origin = screen_.device.topLeft();
  services_.onMenuRequested(origin + (position - origin) / screen_.scale);
}

void X11PanelWindow::leaveContent() {
  if (std::exchange(isPointerInContent_, false) && content_) content_->pointerExited();
}

void X11PanelWindow::updateCursor() { inputRegion_.setCursor(services_.cursor.shape()); }

}  // namespace valdrix::desktop
