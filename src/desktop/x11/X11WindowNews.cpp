#include "desktop/x11/X11WindowNews.h"

namespace valdrix::desktop {

X11WindowNews::X11WindowNews(X11Connection& connection, int millisecondsOfSilence)
    : connection_(connection), millisecondsOfSilence_(millisecondsOfSilence) {
  if (!connection_.isUsable()) return;
  eventHandler_ =
      connection_.addEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
  listen(true);
}

Token X11WindowNews::observe(std::function<void()> block) {
  return observers_.add(std::move(block));
}

void X11WindowNews::listen(bool isListening) {
  isListening_ = isListening;
  const std::uint32_t mask = isListening ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : 0;
  xcb_change_window_attributes(connection_.get(), connection_.root(), XCB_CW_EVENT_MASK, &mask);
  connection_.flush();
}

void X11WindowNews::handle(const xcb_generic_event_t& event) {
  // The window is in the same place in all of them.
  switch (eventType(event)) {
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
      break;
    default:
      return;
  }
  if (!isListening_ || isOurs(eventAs<xcb_configure_notify_event_t>(event).window)) return;
  listen(false);
  silence_.start(millisecondsOfSilence_, this);
  observers_.notify();
}

bool X11WindowNews::isOurs(xcb_window_t window) const {
  const auto* setup = xcb_get_setup(connection_.get());
  return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

void X11WindowNews::timerEvent(QTimerEvent*) {
  silence_.stop();
  if (!connection_.isUsable()) return;
  listen(true);
  observers_.notify();
}

}  // namespace valdrix::desktop
