#include "desktop/x11/X11Manager.h"

#include <string>
#include <utility>

#include <xcb/xfixes.h>

namespace valdrix::desktop {

X11Manager::X11Manager(X11Connection& connection, std::string_view kind) : connection_(connection) {
  if (!connection_.isUsable()) return;
  selection_ = connection_.atom(std::string(kind) + std::to_string(connection_.screenNumber()));
  watch();
  const auto owner = connection_.reply(xcb_get_selection_owner_reply,
                                       xcb_get_selection_owner(connection_.get(), selection_));
  if (owner) owner_ = owner->owner;
}

void X11Manager::watch() {
  const auto* xfixes = xcb_get_extension_data(connection_.get(), &xcb_xfixes_id);
  if (!xfixes || !xfixes->present) return;
  // The server answers XFixes requests only to those who have said which version they speak.
  if (!connection_.reply(xcb_xfixes_query_version_reply,
                         xcb_xfixes_query_version(connection_.get(), 5, 0)))
    return;
  xcb_xfixes_select_selection_input(connection_.get(), connection_.root(), selection_,
                                    XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
  const auto notify = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
  eventHandler_ = connection_.addEventHandler([this, notify](const xcb_generic_event_t& event) {
    if (eventType(event) != notify) return;
    const auto& change = eventAs<xcb_xfixes_selection_notify_event_t>(event);
    if (change.selection == selection_) setOwner(change.owner);
  });
}

void X11Manager::setOwner(xcb_window_t owner) {
  if (std::exchange(owner_, owner) != owner) observers_.notify();
}

Token X11Manager::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

}  // namespace valdrix::desktop
