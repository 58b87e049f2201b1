#include "desktop/x11/X11Connection.h"

#include <QSocketNotifier>

namespace valdrix::desktop {

namespace {

xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; screens.rem > 0 && number > 0; --number) xcb_screen_next(&screens);
  return screens.data;
}

bool isSameMotion(const X11Connection::Event& event, const X11Connection::Event& next) {
  return eventType(event) == XCB_MOTION_NOTIFY && eventType(next) == XCB_MOTION_NOTIFY &&
         eventAs<xcb_motion_notify_event_t>(event).event ==
             eventAs<xcb_motion_notify_event_t>(next).event;
}

}  // namespace

X11Connection::X11Connection() : connection_(xcb_connect(nullptr, &screenNumber_)) {
  if (!isUsable()) return;
  screen_ = screenOf(get(), screenNumber_);
  notifier_ =
      std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(get()), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, &context_, [this] {
    while (auto* event = xcb_poll_for_event(get())) events_.emplace_back(event);
    dispatch();
    // A dead connection stays readable for ever.
    if (!isUsable()) notifier_->setEnabled(false);
  });
}

X11Connection::~X11Connection() = default;

bool X11Connection::isUsable() const { return xcb_connection_has_error(get()) == 0; }

xcb_atom_t X11Connection::atom(std::string_view name) {
  const auto answer =
      reply(xcb_intern_atom_reply,
            xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data()));
  return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
}

Token X11Connection::addEventHandler(std::function<void(const Event&)> block) {
  return eventHandlers_.add(std::move(block));
}

Token X11Connection::addBatchHandler(std::function<void()> block) {
  return batchHandlers_.add(std::move(block));
}

void X11Connection::flush() {
  xcb_flush(get());
  collect();
}

// Waiting for a reply, or for room to send a picture, reads the events that have come, and the
// socket does not become readable for them again.
void X11Connection::collect() {
  while (auto* event = xcb_poll_for_queued_event(get())) events_.emplace_back(event);
  if (events_.empty() || isDispatchScheduled_) return;
  isDispatchScheduled_ = true;
  QMetaObject::invokeMethod(
      &context_, [this] { dispatch(); }, Qt::QueuedConnection);
}

void X11Connection::dispatch() {
  isDispatchScheduled_ = false;
  while (!events_.empty()) {
    const auto event = std::move(events_.front());
    events_.pop_front();
    // Of motion that has piled up only the latest place matters.
    if (!events_.empty() && isSameMotion(*event, *events_.front())) continue;
    eventHandlers_.notify(*event);
  }
  batchHandlers_.notify();
  if (isUsable()) flush();
}

}  // namespace valdrix::desktop
