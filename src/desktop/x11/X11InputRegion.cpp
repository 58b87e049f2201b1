#include "desktop/x11/X11InputRegion.h"

#include <utility>
#include <vector>

#include <xcb/shape.h>

#include "desktop/screens/InputParts.h"

namespace valdrix::desktop {

namespace {

xcb_rectangle_t asX(const QRect& rectangle, QPoint origin) {
  return {static_cast<std::int16_t>(rectangle.x() - origin.x()),
          static_cast<std::int16_t>(rectangle.y() - origin.y()),
          static_cast<std::uint16_t>(rectangle.width()),
          static_cast<std::uint16_t>(rectangle.height())};
}

}  // namespace

X11InputRegion::X11InputRegion(X11Connection& connection, X11Pointer& pointer, Handlers handlers)
    : connection_(connection), pointer_(pointer), handlers_(std::move(handlers)) {
  if (!connection_.isUsable()) return;
  window_ = xcb_generate_id(connection_.get());
  const std::uint32_t values[] = {
      1, XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_POINTER_MOTION |
             XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE};
  xcb_create_window(connection_.get(), 0, window_, connection_.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  eventHandler_ =
      connection_.addEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
  batchHandler_ = connection_.addBatchHandler([this] { hasRestructured_ = false; });
  motionListener_ =
      pointer_.addMotionListener([this](const X11Pointer::Place& place) { movedElsewhere(place); });
}

X11InputRegion::~X11InputRegion() {
  if (window_) xcb_destroy_window(connection_.get(), window_);
}

void X11InputRegion::setFrame(const QRect& frame) {
  frame_ = frame;
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
  xcb_map_window(connection_.get(), window_);
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
  xcb_unmap_window(connection_.get(), window_);
  connection_.flush();
}

void X11InputRegion::setCursor(xcb_cursor_t cursor) {
  if (std::exchange(cursor_, cursor) == cursor) return;
  xcb_change_window_attributes(connection_.get(), window_, XCB_CW_CURSOR, &cursor);
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
      if (motion.event == window_) movedTo({motion.root_x, motion.root_y}, motion.state);
      return;
    }
    case XCB_BUTTON_PRESS:
      return button(eventAs<xcb_button_press_event_t>(event), true);
    case XCB_BUTTON_RELEASE:
      return button(eventAs<xcb_button_release_event_t>(event), false);
    case XCB_UNMAP_NOTIFY:
    case XCB_DESTROY_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
      hasRestructured_ = true;
      return;
    default:
      return;
  }
}

void X11InputRegion::entered(const xcb_enter_notify_event_t& event) {
  if (event.event != window_) return;
  hasPointer_ = true;
  const QPoint position(event.root_x, event.root_y);
  // A window went from above us and the pointer rests where that was.
  if (hasRestructured_) {
    position_ = position;
    settle();
  } else {
    movedTo(position, event.state);
  }
}

// Nothing that happens in our rectangle goes by unseen, so a pointer that left without moving is
// still where we saw it last: something else has covered us or taken the pointer.
void X11InputRegion::left(const xcb_leave_notify_event_t& event) {
  if (event.event != window_) return;
  hasPointer_ = false;
  const auto isAlive = lifetime_.weak([] { return true; });
  movedTo({event.root_x, event.root_y}, event.state);
  if (isAlive()) watchWhileLost();
}

void X11InputRegion::button(const xcb_button_press_event_t& event, bool isPressed) {
  if (event.event != window_) return;
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
  if (place.position == position_) return;
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
  std::vector<xcb_rectangle_t> shape;
  for (const QRect& part : inputParts(rectangle_, exception_))
    shape.push_back(asX(part, frame_.topLeft()));
  xcb_shape_rectangles(connection_.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                       XCB_CLIP_ORDERING_UNSORTED, window_, 0, 0,
                       static_cast<std::uint32_t>(shape.size()), shape.data());
  connection_.flush();
}

}  // namespace valdrix::desktop
