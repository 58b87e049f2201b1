#include "desktop/x11/X11StackingGuard.h"

#include <algorithm>
#include <string>

#include <xcb/shape.h>

namespace valdrix::desktop {

namespace {

constexpr int mostRaisesAgainstOneWindow = 3;

}  // namespace

X11StackingGuard::X11StackingGuard(X11Connection& connection, std::function<void()> raise,
                                   int millisecondsBetweenRaises)
    : connection_(connection),
      raise_(std::move(raise)),
      millisecondsBetweenRaises_(millisecondsBetweenRaises) {
  if (!connection_.isUsable()) return;
  typeProperty_ = connection_.atom("_NET_WM_WINDOW_TYPE");
  for (const char* name :
       {"DROPDOWN_MENU", "POPUP_MENU", "MENU", "TOOLTIP", "NOTIFICATION", "COMBO", "DND"})
    popUpTypes_.push_back(connection_.atom(std::string("_NET_WM_WINDOW_TYPE_") + name));
}

void X11StackingGuard::start(xcb_window_t window, xcb_window_t companion, const QRect& area,
                             const QRect& screen) {
  window_ = window;
  companion_ = companion;
  area_ = area;
  screen_ = screen;
  eventHandler_ =
      connection_.addEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
}

void X11StackingGuard::stop() {
  eventHandler_.reset();
  timer_.stop();
  raisesAgainst_.clear();
}

void X11StackingGuard::handle(const xcb_generic_event_t& event) {
  switch (eventType(event)) {
    case XCB_MAP_NOTIFY:
      if (eventAs<xcb_map_notify_event_t>(event).window != window_) scheduleCheck();
      return;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& change = eventAs<xcb_configure_notify_event_t>(event);
      const QRect frame(change.x, change.y, change.width, change.height);
      const bool isOurs = change.window == window_ || change.window == companion_;
      if (!isOurs && frame.intersects(area_)) scheduleCheck();
      return;
    }
    case XCB_UNMAP_NOTIFY:
      raisesAgainst_.erase(eventAs<xcb_unmap_notify_event_t>(event).window);
      // It may have been what kept us from rising above another one.
      scheduleCheck();
      return;
    default:
      return;
  }
}

void X11StackingGuard::scheduleCheck() {
  if (timer_.isActive()) return;
  const auto since = sinceRaise_.isValid() ? sinceRaise_.elapsed() : millisecondsBetweenRaises_;
  timer_.start(static_cast<int>(std::max<qint64>(0, millisecondsBetweenRaises_ - since)), this);
}

void X11StackingGuard::timerEvent(QTimerEvent*) {
  timer_.stop();
  check();
}

void X11StackingGuard::check() {
  const auto above = windowsAbove();
  if (std::any_of(above.begin(), above.end(),
                  [this](const Neighbour& neighbour) { return belongsAbove(neighbour); }))
    return;
  bool shouldRaise = false;
  for (const Neighbour& neighbour : above)
    shouldRaise |= raisesAgainst_[neighbour.window]++ < mostRaisesAgainstOneWindow;
  if (!shouldRaise) return;
  sinceRaise_.start();
  raise_();
}

// The visible windows above ours that touch the guarded area.
std::vector<X11StackingGuard::Neighbour> X11StackingGuard::windowsAbove() {
  const auto tree = connection_.reply(xcb_query_tree_reply,
                                      xcb_query_tree(connection_.get(), connection_.root()));
  if (!tree) return {};
  const auto* children = xcb_query_tree_children(tree.get());
  const auto* end = children + xcb_query_tree_children_length(tree.get());
  const auto* own = std::find(children, end, window_);
  std::vector<Neighbour> above;
  for (const auto* child = own == end ? end : own + 1; child != end; ++child) {
    if (*child == companion_) continue;
    const auto attributesCookie = xcb_get_window_attributes(connection_.get(), *child);
    const auto geometryCookie = xcb_get_geometry(connection_.get(), *child);
    const auto attributes = connection_.reply(xcb_get_window_attributes_reply, attributesCookie);
    const auto geometry = connection_.reply(xcb_get_geometry_reply, geometryCookie);
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY)
      continue;
    const QRect frame(geometry->x, geometry->y, geometry->width + 2 * geometry->border_width,
                      geometry->height + 2 * geometry->border_width);
    if (frame.intersects(area_) && takesInput(*child))
      above.push_back({*child, frame, attributes->override_redirect != 0});
  }
  return above;
}

// What lets every click through is no window to a user: above all the surface over the whole screen
// that a compositing manager draws on.
bool X11StackingGuard::takesInput(xcb_window_t window) {
  const auto shape =
      connection_.reply(xcb_shape_get_rectangles_reply,
                        xcb_shape_get_rectangles(connection_.get(), window, XCB_SHAPE_SK_INPUT));
  return !shape || xcb_shape_get_rectangles_rectangles_length(shape.get()) > 0;
}

bool X11StackingGuard::belongsAbove(const Neighbour& neighbour) {
  return neighbour.isUnmanaged && (neighbour.frame.contains(screen_) || isPopUp(neighbour.window));
}

bool X11StackingGuard::isPopUp(xcb_window_t window) {
  const auto types = connection_.reply(
      xcb_get_property_reply,
      xcb_get_property(connection_.get(), 0, window, typeProperty_, XCB_ATOM_ATOM, 0, 16));
  if (!types || types->format != 32) return false;
  const auto* first = static_cast<const xcb_atom_t*>(xcb_get_property_value(types.get()));
  return std::find_first_of(first, first + types->value_len, popUpTypes_.begin(),
                            popUpTypes_.end()) != first + types->value_len;
}

}  // namespace valdrix::desktop
