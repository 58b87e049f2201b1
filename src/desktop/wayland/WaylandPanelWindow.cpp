#include "desktop/wayland/WaylandPanelWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "view/HostingView.h"

namespace valdrix::desktop {

namespace {

// All pixels whose top left corner lies in the rectangle or on one of its edges.
QRect pixelsInside(const view::Rect& rectangle) {
  if (rectangle.isEmpty()) return {};
  constexpr double tolerance = 1e-6;
  const auto first = [](double edge) { return static_cast<int>(std::ceil(edge - tolerance)); };
  const auto last = [](double edge) { return static_cast<int>(std::floor(edge + tolerance)); };
  return {QPoint(first(rectangle.minX()), first(rectangle.minY())),
          QPoint(last(rectangle.maxX()), last(rectangle.maxY()))};
}

}  // namespace

WaylandPanelWindow::WaylandPanelWindow(const WaylandPanelServices& services,
                                       const view::Rect& contentRectangle,
                                       const platform::PanelConfiguration& configuration)
    : services_(services),
      contentRectangle_(contentRectangle),
      takesKeyboard_(configuration.canBecomeKey),
      trackedRectangle_{0, 0, contentRectangle.width, contentRectangle.height},
      painter_(services.textMetrics),
      inputRegion_(services.connection, services.pointer, inputHandlers()),
      buffers_(services.connection.shm(), [this] {
        if (wantsFrame_) requestFrame();
      }) {
  inputRegion_.setIgnoresMouseEvents(configuration.ignoresMouseEvents);
  place();
  screensObserver_ = services_.screens.observeChanges([this] { place(); });
}

WaylandPanelWindow::~WaylandPanelWindow() {
  setContentView(nullptr);
  endSurface();
}

WaylandInputRegion::Handlers WaylandPanelWindow::inputHandlers() {
  return {
      .moved = [this](std::optional<QPointF> position,
                      bool isInside) { pointerMoved(position, isInside); },
      .pressed = [this](QPointF position, bool isPressed) { pointerPressed(position, isPressed); },
      .menuRequested = [this](QPointF position) { requestMenu(position); },
      .changed =
          [this] {
            if (isMapped_) commit();
          },
      .afterSettling =
          [this](std::function<void()> block) {
            services_.connection.afterSettling(std::move(block));
          },
      .locate = [this](QPointF position) { return toScreen(position); },
      .locateElsewhere =
          [this](view::Point last) {
            return view::Point{last.x, elsewhere()};
          },
  };
}

// Finds the window's place on the outputs as they are now.
void WaylandPanelWindow::place() {
  auto found = services_.screens.placeFor(contentRectangle_);
  if (found == place_ && (surface_ || !isShown_)) return;
  endSurface();
  place_ = std::move(found);
  if (!place_) return;
  const auto& screen = place_->frame;
  frame_ = {static_cast<int>(std::lround(contentRectangle_.minX() - screen.minX())),
            static_cast<int>(std::lround(screen.maxY() - contentRectangle_.maxY())),
            static_cast<int>(std::lround(contentRectangle_.width)),
            static_cast<int>(std::lround(contentRectangle_.height))};
  applyTrackedRectangle();
  if (isShown_) makeSurface();
}

void WaylandPanelWindow::makeSurface() {
  if (!services_.connection.isUsable() || !place_ || frame_.isEmpty()) return;
  surface_ = std::make_unique<WaylandPanelSurface>(
      services_.connection, *place_, frame_, takesKeyboard_,
      WaylandPanelSurface::Handlers{.configured = [this] { configured(); },
                                    .frameShown = [this] { frameShown(); },
                                    .scaleChanged = [this] { rescale(); },
                                    .closed = [this] { endSurface(); }});
  // What is computed from sizes in whole pixels may be a little more than was meant.
  constexpr double tolerance = 0.01;
  seatsTarget_ = services_.seats.attach(surface_->get(), inputRegion_,
                                        static_cast<int>(std::ceil(surface_->scale() - tolerance)));
  rescale();
  inputRegion_.show();
  // The compositor answers with the surface's configuration.
  surface_->commit();
}

void WaylandPanelWindow::endSurface() {
  leaveContent();
  inputRegion_.hide();
  seatsTarget_.reset();
  surface_.reset();
  buffers_.clear();
  isMapped_ = false;
  wantsFrame_ = false;
}

void WaylandPanelWindow::rescale() {
  buffers_.setSize(surface_->pictureSize());
  painter_.setPictures(buffers_.size(), surface_->scale());
  damage_ = QRect(QPoint(), buffers_.size());
  if (isMapped_) requestFrame();
}

void WaylandPanelWindow::setContentView(view::HostingView* content) {
  leaveContent();
  if (content_) content_->setOnNeedsFrame({});
  content_ = content;
  painter_.setContent(content);
  requestFrame();
  if (content_) content_->setOnNeedsFrame([this] { requestFrame(); });
}

void WaylandPanelWindow::orderFrontRegardless() {
  isShown_ = true;
  place();
}

void WaylandPanelWindow::orderOut() {
  isShown_ = false;
  endSurface();
}

bool WaylandPanelWindow::ignoresMouseEvents() const { return inputRegion_.ignoresMouseEvents(); }

void WaylandPanelWindow::setIgnoresMouseEvents(bool ignores) {
  if (ignores) leaveContent();
  inputRegion_.setIgnoresMouseEvents(ignores);
}

void WaylandPanelWindow::setTrackedRectangle(const view::Rect& rectangle) {
  trackedRectangle_ = rectangle;
  applyTrackedRectangle();
}

void WaylandPanelWindow::applyTrackedRectangle() {
  if (!place_) return;
  const auto origin = toWindow({0, 0});
  const QRect pixels = pixelsInside({trackedRectangle_.x - origin.x, trackedRectangle_.y - origin.y,
                                     trackedRectangle_.width, trackedRectangle_.height});
  inputRegion_.setRectangle(pixels.intersected(QRect(QPoint(), frame_.size())));
}

// At the loop's next turn, or when the frame before has been shown.
void WaylandPanelWindow::requestFrame() {
  wantsFrame_ = true;
  if (!surface_ || !surface_->isConfigured() || surface_->awaitsFrame()) return;
  if (std::exchange(isDrawScheduled_, true)) return;
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        isDrawScheduled_ = false;
        if (wantsFrame_ && surface_ && surface_->isConfigured() && !surface_->awaitsFrame())
          drawFrame();
      },
      Qt::QueuedConnection);
}

// The first picture waits for the loop's next turn: some compositors tell the scale after this.
void WaylandPanelWindow::configured() {
  if (isMapped_)
    commit();
  else
    requestFrame();
}

void WaylandPanelWindow::frameShown() {
  if (wantsFrame_) drawFrame();
}

void WaylandPanelWindow::drawFrame() {
  wantsFrame_ = false;
  const QRegion area = painter_.prepareFrame(1 / place_->description.refreshRate);
  damage_ |= area;
  buffers_.damage(area);
  if (isMapped_ && damage_.isEmpty()) {
    // What moves by less than can be seen needs its next frame all the same.
    if (wantsFrame_) surface_->requestFrame();
    return commit();
  }
  auto* const buffer = buffers_.take(painter_.inked());
  // It is drawn when the compositor gives a buffer back.
  wantsFrame_ = wantsFrame_ || !buffer;
  if (!buffer) return;
  paint(*buffer);
  surface_->attach(*buffer, std::exchange(damage_, {}));
  surface_->requestFrame();
  isMapped_ = true;
  commit();
}

void WaylandPanelWindow::paint(WaylandBuffers::Buffer& buffer) {
  const QRegion area = std::exchange(buffer.stale, {});
  if (area.isEmpty()) return;
  painter_.paint(buffer.image(), area);
  ++framesDrawn_;
  ++services_.framesDrawn;
}

void WaylandPanelWindow::commit() {
  inputRegion_.applyTo(surface_->get());
  surface_->commit();
  inputRegion_.committed();
}

view::Point WaylandPanelWindow::toScreen(QPointF position) const {
  if (!place_) return {};
  // A pixel's place is that of its top left corner, so that the topmost row of the screen is the
  // screen's top edge.
  return {place_->frame.minX() + frame_.left() + std::floor(position.x()),
          place_->frame.maxY() - frame_.top() - std::floor(position.y())};
}

view::Point WaylandPanelWindow::toWindow(QPointF position) const {
  return {place_->frame.minX() + frame_.left() + position.x() - contentRectangle_.minX(),
          contentRectangle_.maxY() - place_->frame.maxY() + frame_.top() + position.y()};
}

view::Point WaylandPanelWindow::toContent(QPointF position) const {
  const auto place = toWindow(position);
  return {place.x - content_->frame().x, place.y - content_->frame().y};
}

// Below the screen's other edge and the whole window: the panel may be as high as both.
double WaylandPanelWindow::elsewhere() const {
  const double bottom = contentRectangle_.minY() - 1;
  return place_ ? std::min(place_->frame.minY(), bottom) : bottom;
}

void WaylandPanelWindow::pointerMoved(std::optional<QPointF> position, bool isInside) {
  if (!content_) return;
  if (isInside && !ignoresMouseEvents()) {
    isPointerInContent_ = true;
    content_->pointerMoved(toContent(*position));
  } else {
    leaveContent();
  }
}

void WaylandPanelWindow::pointerPressed(QPointF position, bool isPressed) {
  if (!content_) return;
  if (isPressed)
    content_->pointerPressed(toContent(position));
  else
    content_->pointerReleased(toContent(position));
}

void WaylandPanelWindow::requestMenu(QPointF position) {
  if (!services_.onMenuRequested || !place_) return;
  services_.onMenuRequested(place_->description.logical.topLeft() + frame_.topLeft() +
                            position.toPoint());
}

void WaylandPanelWindow::leaveContent() {
  if (std::exchange(isPointerInContent_, false) && content_) content_->pointerExited();
}

}  // namespace valdrix::desktop
