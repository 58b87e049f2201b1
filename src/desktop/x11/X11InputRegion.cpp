#include "desktop/x11/X11InputRegion.h"

#include <utility>
#include <vector>

#include <xcb/shape.h>

#include "desktop/screens/InputParts.h"

namespace valdrix::desktop {

namespace {

// `parts` are of the root, and so is `origin`, where the window is.
void setShape(X11Connection& connection, xcb_window_t window, xcb_shape_sk_t kind,
              const QList<QRect>& parts, QPoint origin) {
  std::vector<xcb_rectangle_t> shape;
  for (const QRect& part : parts)
    shape.push_back({static_cast<std::int16_t>(part.x() - origin.x()),
                     static_cast<std::int16_t>(part.y() - origin.y()),
                     static_cast<std::uint16_t>(part.width()),
                     static_cast<std::uint16_t>(part.height())});
  xcb_shape_rectangles(connection.get(), XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, window,
                       0, 0, static_cast<std::uint32_t>(shape.size()), shape.data());
}

}  // namespace

X11InputRegion::X11InputRegion(X11Connection& connection, X11Pointer& pointer,
                               const X11PanelSurface& surface, Handlers handlers)
    : connection_(connection),
      pointer_(pointer),
      surface_(surface),
      handlers_(std::move(handlers)) {
  if (!connection_.isUsable()) return;
  window_ = xcb_generate_id(connection_.get());
  const std::uint32_t values[] = {1, X11PanelSurface::pointerEvents};
  xcb_create_window(connection_.get(), 0, window_, connection_.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  eventHandler_ =
      connection_.addEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
  batchHandler_ = connection_.addBatchHandler([this] { settleAfterEntering(); });
  motionListener_ =
      pointer_.addMotionListener([this](const X11Pointer::Place& place) { movedElsewhere(place); });
}

X11InputRegion::~X11InputRegion() {
  if (window_) xcb_destroy_window(connection_.get(), window_);
}

void X11InputRegion::setFrame(const QRect& frame) {
  frame_ = frame;
  appliedParts_.reset();
  const std::uint32_t values[] = {
      static_cast<std::uint32_t>(frame.x()), static_cast<std::uint32_t>(frame.y()),
      static_cast<std::uint32_t>(frame.width()), static_cast<std::uint32_t>(frame.height())};
  xcb_configure_window(connection_.get(), window_,
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                           XCB_CONFIG_WINDOW_HEIGHT,
                       values);
  apply();
}

bool X11InputRegion::takes(QPoint position) const {
  return isShown_ && rectangle_.contains(position) != (exception_ == position);
}

void X11InputRegion::setRectangle(const QRect& rectangle) {
  const QRect clipped = rectangle.intersected(frame_);
  if (clipped == rectangle_) return;
  const auto place = pointer_.query();
  const bool tookPointer = place && takes(place->position);
  rectangle_ = clipped;
  exception_.reset();
  if (isShown_ && place) {
    if (takes(place->position) != tookPointer) exception_ = place->position;
    reportIfLeftUnseen(*place);
  }
  apply();
}

// A quick pointer can be through the old rectangle and out of the new one before the new one is
// set.
void X11InputRegion::reportIfLeftUnseen(const X11Pointer::Place& place) {
  const bool countsAsInside = !ignoresMouseEvents_ && rectangle_.contains(position_);
  if (!countsAsInside || hasPointer_ || rectangle_.contains(place.position)) return;
  QMetaObject::invokeMethod(
      &context_, [this, place] { movedElsewhere(place); }, Qt::QueuedConnection);
}

void X11InputRegion::setIgnoresMouseEvents(bool ignores) {
  if (ignores == ignoresMouseEvents_) return;
  ignoresMouseEvents_ = ignores;
  const auto place = pointer_.query();
  // The server sends Enter when the hole under a resting pointer closes.
  if (place && exception_ == place->position) position_ = place->position;
  exception_.reset();
  if (ignores && place && rectangle_.contains(place->position)) exception_ = place->position;
  apply();
}

void X11InputRegion::show() {
  isShown_ = true;
  if (const auto place = pointer_.query();
      ignoresMouseEvents_ && place && rectangle_.contains(place->position))
    exception_ = place->position;
  apply();
  updateWindows();
  reportIfLeftWhileHidden();
}

// A window that takes the pointer from the first is one in which it was seen: at the panel's place,
// which hangs from the middle of the upper edge. Whoever saw it there has not seen it leave.
void X11InputRegion::reportIfLeftWhileHidden() {
  if (ignoresMouseEvents_) return;
  position_ = {frame_.center().x(), frame_.top()};
  if (const auto place = pointer_.query()) reportIfLeftUnseen(*place);
}

void X11InputRegion::updateWindows() {
  if (isShown_ && surface_.isCutOut())
    xcb_map_window(connection_.get(), window_);
  else
    xcb_unmap_window(connection_.get(), window_);
  connection_.flush();
}

void X11InputRegion::raise() {
  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(connection_.get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

void X11InputRegion::hide() {
  isShown_ = false;
  hasPointer_ = false;
  exception_.reset();
  lostPointerWatch_.reset();
  updateWindows();
}

void X11InputRegion::setCursor(xcb_cursor_t cursor) {
  if (std::exchange(cursor_, cursor) == cursor) return;
  for (const auto window : {window_, surface_.window()})
    xcb_change_window_attributes(connection_.get(), window, XCB_CW_CURSOR, &cursor);
  connection_.flush();
}

void X11InputRegion::handle(const xcb_generic_event_t& event) {
  switch (eventType(event)) {
    case XCB_ENTER_NOTIFY:
      return entered(eventAs<xcb_enter_notify_event_t>(event));
    case XCB_LEAVE_NOTIFY:
      return left(eventAs<xcb_leave_notify_event_t>(event));
    case XCB_MOTION_NOTIFY: {
      const auto& motion = eventAs<xcb_motion_notify_event_t>(event);
      if (isOurs(motion.event)) movedTo({motion.root_x, motion.root_y}, motion.state);
      return;
    }
    case XCB_BUTTON_PRESS:
      return button(eventAs<xcb_button_press_event_t>(event), true);
    case XCB_BUTTON_RELEASE:
      return button(eventAs<xcb_button_release_event_t>(event), false);
    default:
      return;
  }
}

void X11InputRegion::entered(const xcb_enter_notify_event_t& event) {
  if (!isOurs(event.event)) return;
  hasPointer_ = true;
  hasEnteredUnmoved_ = true;
  position_ = {event.root_x, event.root_y};
}

// No motion came with it: a window went from above us where the pointer rests.
void X11InputRegion::settleAfterEntering() {
  if (hasEnteredUnmoved_) settle();
}

// Nothing that happens in our rectangle goes by unseen, so a pointer that left without moving is
// still where we saw it last: something else has covered us or taken the pointer.
void X11InputRegion::left(const xcb_leave_notify_event_t& event) {
  if (!isOurs(event.event)) return;
  hasPointer_ = false;
  hasEnteredUnmoved_ = false;
  const QPoint position(event.root_x, event.root_y);
  const auto isAlive = lifetime_.weak([] { return true; });
  if (takes(position) && pointer_.hasLeftServer(position))
    report({X11Pointer::nowhere, event.state}, X11Pointer::Destination::elsewhere);
  else
    movedTo(position, event.state);
  if (isAlive()) watchWhileLost();
}

void X11InputRegion::button(const xcb_button_press_event_t& event, bool isPressed) {
  if (!isOurs(event.event)) return;
  const QPoint position(event.root_x, event.root_y);
  const auto isAlive = lifetime_.weak([] { return true; });
  movedTo(position, event.state);
  if (!isAlive() || ignoresMouseEvents_) return;
  if (event.detail == XCB_BUTTON_INDEX_1) handlers_.pressed(position, isPressed);
  if (event.detail == XCB_BUTTON_INDEX_3 && isPressed) requestMenu(event);
}

// The press has given us the pointer until its release, and nobody else could have it.
void X11InputRegion::requestMenu(const xcb_button_press_event_t& event) {
  xcb_ungrab_pointer(connection_.get(), event.time);
  // The menu asks on another connection: the server must have answered here before.
  (void)pointer_.query();
  handlers_.menuRequested({event.root_x, event.root_y});
}

void X11InputRegion::movedTo(QPoint position, std::uint16_t state) {
  const bool isOurs = !ignoresMouseEvents_ && rectangle_.contains(position);
  report({position, state},
         isOurs ? X11Pointer::Destination::ourWindow : X11Pointer::Destination::elsewhere);
}

void X11InputRegion::report(const X11Pointer::Place& place, X11Pointer::Destination destination) {
  if (!std::exchange(hasEnteredUnmoved_, false) && place.position == position_) return;
  position_ = place.position;
  exception_.reset();
  // Those who are told may replace the window.
  const auto isAlive = lifetime_.weak([] { return true; });
  pointer_.report(destination, place.state);
  if (isAlive()) handlers_.moved(place.position, rectangle_.contains(place.position));
  if (isAlive()) settle();
}

// Motion that we are not told of directly: in the middle of another program's drag, or after it
// took the pointer from us.
void X11InputRegion::movedElsewhere(const X11Pointer::Place& place) {
  if (!isShown_ || hasPointer_) return;
  const bool matters = rectangle_.contains(position_) || rectangle_.contains(place.position);
  if (matters)
    report(place, X11Pointer::Destination::elsewhere);
  else
    position_ = place.position;
}

void X11InputRegion::settle() {
  if (ignoresMouseEvents_ && rectangle_.contains(position_)) exception_ = position_;
  apply();
  watchWhileLost();
}

void X11InputRegion::watchWhileLost() {
  const bool isLost =
      isShown_ && !hasPointer_ && rectangle_.contains(position_) && exception_ != position_;
  if (isLost == static_cast<bool>(lostPointerWatch_)) return;
  lostPointerWatch_ = isLost ? pointer_.watchMotion() : Token();
}

void X11InputRegion::apply() {
  const QList<QRect> parts = inputParts(rectangle_, exception_);
  const QPoint origin = surface_.place().topLeft();
  if (parts == appliedParts_ && origin == appliedOrigin_) return;
  appliedParts_ = parts;
  appliedOrigin_ = origin;
  setShape(connection_, window_, XCB_SHAPE_SK_BOUNDING, parts, frame_.topLeft());
  setShape(connection_, surface_.window(), XCB_SHAPE_SK_INPUT, parts, origin);
  connection_.flush();
}

}  // namespace valdrix::desktop
