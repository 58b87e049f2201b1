#include "desktop/x11/X11Pointer.h"

#include <algorithm>
#include <utility>

#include <xcb/xinput.h>

#include "desktop/x11/ScreenLayout.h"

namespace valdrix::desktop {

namespace {

constexpr std::uint16_t anyDragButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;

std::uint32_t kindOfMotion(std::uint16_t state) {
  if (state & XCB_BUTTON_MASK_1) return platform::eventMask::leftMouseDragged;
  if (state & XCB_BUTTON_MASK_3) return platform::eventMask::rightMouseDragged;
  return state & XCB_BUTTON_MASK_2 ? 0 : platform::eventMask::mouseMoved;
}

// The major opcode of XInput when the server knows raw events (2.2: also during grabs), or 0.
std::uint8_t findXInput(X11Connection& connection) {
  if (!connection.isUsable()) return 0;
  const auto* extension = xcb_get_extension_data(connection.get(), &xcb_input_id);
  if (!extension || !extension->present) return 0;
  const auto version = connection.reply(xcb_input_xi_query_version_reply,
                                        xcb_input_xi_query_version(connection.get(), 2, 2));
  const bool isNewEnough =
      version &&
      (version->major_version > 2 || (version->major_version == 2 && version->minor_version >= 2));
  return isNewEnough ? extension->major_opcode : 0;
}

// Buttons 4 to 7 are the wheel; nothing is dragged with them.
bool isDragButton(std::uint32_t button) { return button >= 1 && button <= 3; }

}  // namespace

X11Pointer::X11Pointer(X11Connection& connection)
    : connection_(connection), xinputOpcode_(findXInput(connection)) {
  batchHandler_ = connection_.addBatchHandler([this] { handleBatch(); });
  if (!xinputOpcode_) return;
  eventHandler_ =
      connection_.addEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
  selectRawEvents();
}

Token X11Pointer::addGlobalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                        std::function<void()> handler) {
  return globalMonitors_.add([mask, handler = std::move(handler)](std::uint32_t kind) {
    if (mask & kind) handler();
  });
}

Token X11Pointer::addLocalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                       std::function<void()> handler) {
  return localMonitors_.add([mask, handler = std::move(handler)](std::uint32_t kind) {
    if (mask & kind) handler();
  });
}

view::Point X11Pointer::mouseLocation() const {
  if (const auto place = query()) lastLocation_ = ScreenLayout::current().toPoints(place->position);
  return lastLocation_;
}

std::optional<X11Pointer::Place> X11Pointer::query() const {
  if (!connection_.isUsable()) return std::nullopt;
  const auto answer = connection_.reply(xcb_query_pointer_reply,
                                        xcb_query_pointer(connection_.get(), connection_.root()));
  if (!answer || !answer->same_screen) return std::nullopt;
  const QPoint position(answer->root_x, answer->root_y);
  if (exit_ != position || answer->child != XCB_WINDOW_NONE) exit_.reset();
  return Place{exit_ ? nowhere : position, answer->mask};
}

bool X11Pointer::hasLeftServer(QPoint position) {
  exit_ = position;
  const auto place = query();
  if (!place) exit_.reset();
  return exit_.has_value();
}

void X11Pointer::report(Destination destination, std::uint16_t state) {
  const auto& monitors = destination == Destination::ourWindow ? localMonitors_ : globalMonitors_;
  monitors.notify(kindOfMotion(state));
}

Token X11Pointer::addMotionListener(std::function<void(const Place&)> block) {
  return motionListeners_.add(std::move(block));
}

Token X11Pointer::watchMotion() {
  ++watchers_;
  selectRawEvents();
  return Token(lifetime_.weak([this] {
    --watchers_;
    selectRawEvents();
  }));
}

Token X11Pointer::holdMotion() {
  ++holders_;
  return Token(lifetime_.weak([this] {
    if (--holders_ > 0) return;
    if (const auto place = query()) motionListeners_.notify(*place);
  }));
}

void X11Pointer::selectRawEvents() {
  if (!xinputOpcode_ || !connection_.isUsable()) return;
  isSelectingMotion_ = heldButtons_ > 0 || watchers_ > 0;
  struct {
    xcb_input_event_mask_t header;
    std::uint32_t mask;
  } selection{};
  selection.header.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
  selection.header.mask_len = 1;
  selection.mask =
      XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
  if (isSelectingMotion_) selection.mask |= XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
  xcb_input_xi_select_events(connection_.get(), connection_.root(), 1, &selection.header);
  connection_.flush();
}

void X11Pointer::handle(const xcb_generic_event_t& event) {
  if (eventType(event) != XCB_GE_GENERIC) return;
  const auto& generic = eventAs<xcb_ge_generic_event_t>(event);
  if (generic.extension != xinputOpcode_) return;
  if (generic.event_type == XCB_INPUT_RAW_MOTION) {
    hasMoved_ = true;
    return;
  }
  const auto button = eventAs<xcb_input_raw_button_press_event_t>(event).detail;
  if (!isDragButton(button)) return;
  if (generic.event_type == XCB_INPUT_RAW_BUTTON_PRESS)
    ++heldButtons_;
  else if (generic.event_type == XCB_INPUT_RAW_BUTTON_RELEASE)
    heldButtons_ = std::max(0, heldButtons_ - 1);
  if (isSelectingMotion_ != (heldButtons_ > 0 || watchers_ > 0)) selectRawEvents();
}

// Raw motion says nothing of places, so many of them cost one question.
void X11Pointer::handleBatch() {
  if (!std::exchange(hasMoved_, false)) return;
  const auto place = query();
  if (!place) return;
  // A release that went unseen (a virtual terminal switched away) must not leave us watching.
  if (heldButtons_ > 0 && !(place->state & anyDragButton)) {
    heldButtons_ = 0;
    selectRawEvents();
  }
  if (holders_ == 0) motionListeners_.notify(*place);
}

}  // namespace valdrix::desktop
