#include "desktop/x11/X11StackingGuard.h"

#include <algorithm>
#include <string>

#include <xcb/shape.h>

namespace valdrix::desktop {

namespace {

// Some window managers put a second window between their frame and the program's.
constexpr int levelsOfFrames = 2;

}  // namespace

X11StackingGuard::X11StackingGuard(X11Connection& connection, X11WindowNews& news,
                                   std::function<void()> raise, const Limits& limits)
    : connection_(connection), news_(news), raise_(std::move(raise)), limits_(limits) {
  clock_.start();
  if (!connection_.isUsable()) return;
  typeProperty_ = connection_.atom("_NET_WM_WINDOW_TYPE");
  stateProperty_ = connection_.atom("WM_STATE");
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
  if (!newsObserver_) newsObserver_ = news_.observe([this] { scheduleCheck(0); });
}

void X11StackingGuard::stop() {
  newsObserver_.reset();
  timer_.stop();
  raisesAgainst_.clear();
}

void X11StackingGuard::scheduleCheck(qint64 milliseconds) {
  timer_.start(static_cast<int>(std::max(milliseconds, nextRaise_ - clock_.elapsed())), this);
}

void X11StackingGuard::timerEvent(QTimerEvent*) {
  timer_.stop();
  check();
}

void X11StackingGuard::check() {
  const auto above = windowsAbove();
  if (above.empty() || std::any_of(above.begin(), above.end(), [this](const Neighbour& neighbour) {
        return belongsAbove(neighbour);
      }))
    return;
  if (const auto wait = untilRaiseAgainst(above); wait > 0) return scheduleCheck(wait);
  for (const Neighbour& neighbour : above)
    raisesAgainst_[neighbour.window].push_back(clock_.elapsed());
  nextRaise_ = clock_.elapsed() + limits_.betweenRaises;
  raise_();
}

// In milliseconds. A raise is against all windows above, so one that may be made against one of
// them may be made.
qint64 X11StackingGuard::untilRaiseAgainst(const std::vector<Neighbour>& neighbours) {
  const auto now = clock_.elapsed();
  for (auto& [window, times] : raisesAgainst_)
    while (!times.empty() && times.front() + limits_.perTime <= now) times.pop_front();
  std::erase_if(raisesAgainst_, [](const auto& entry) { return entry.second.empty(); });
  qint64 least = limits_.perTime;
  for (const Neighbour& neighbour : neighbours) {
    const auto found = raisesAgainst_.find(neighbour.window);
    const bool isFree =
        found == raisesAgainst_.end() || found->second.size() < limits_.raisesAgainstOneWindow;
    least = std::min(least, isFree ? 0 : found->second.front() + limits_.perTime - now);
  }
  return least;
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
  const auto isLocker = [&] {
    return neighbour.frame.contains(screen_) && !isFrame(neighbour.window, levelsOfFrames);
  };
  return neighbour.isUnmanaged && (isPopUp(neighbour.window) || isLocker());
}

// Window managers mark the windows that they manage. Frames around them may themselves be
// unmanaged.
bool X11StackingGuard::isFrame(xcb_window_t window, int depth) {
  const auto tree =
      connection_.reply(xcb_query_tree_reply, xcb_query_tree(connection_.get(), window));
  if (!tree) return false;
  const auto* children = xcb_query_tree_children(tree.get());
  return std::any_of(
      children, children + xcb_query_tree_children_length(tree.get()), [&](xcb_window_t child) {
        const auto state = connection_.reply(
            xcb_get_property_reply, xcb_get_property(connection_.get(), 0, child, stateProperty_,
                                                     XCB_GET_PROPERTY_TYPE_ANY, 0, 0));
        return (state && state->type != XCB_ATOM_NONE) || (depth > 1 && isFrame(child, depth - 1));
      });
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
