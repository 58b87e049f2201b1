#include "desktop/audio/PulseConnection.h"

#include <algorithm>

#include <sys/time.h>

namespace valdrix::desktop {

namespace {

// Pauses double from the first, so that a server which is still starting is found soon, up to the
// longest. A watched folder lets the attempts end once they have covered a server that has made its
// socket but doesn't listen yet.
constexpr pa_usec_t firstDelay = 10 * PA_USEC_PER_MSEC;
constexpr pa_usec_t longestDelay = 30 * PA_USEC_PER_SEC;
constexpr pa_usec_t lastDelayBeforeRest = 4 * PA_USEC_PER_SEC;

PulseHandle<pa_proplist> properties() {
  PulseHandle<pa_proplist> list(pa_proplist_new());
  pa_proplist_sets(list.get(), PA_PROP_APPLICATION_NAME, "valdrix");
  pa_proplist_sets(list.get(), PA_PROP_APPLICATION_ID, "valdrix");
  return list;
}

}  // namespace

PulseConnection::PulseConnection(Callbacks callbacks)
    : callbacks_(std::move(callbacks)),
      folder_(pulseRuntimeFolder()),
      mainloop_(pa_threaded_mainloop_new()),
      nextDelay_(firstDelay) {
  if (!mainloop_) {
    callbacks_.onLost();
    return;
  }
  pa_threaded_mainloop_set_name(mainloop_.get(), "sound");
  api_ = pa_threaded_mainloop_get_api(mainloop_.get());
  attempt_ = {nullptr, {api_}};
  // Connecting reads files and may ask the X server, so the first attempt too is made over there.
  scheduleAttempt(0);
  if (pa_threaded_mainloop_start(mainloop_.get()) < 0) callbacks_.onLost();
}

PulseConnection::~PulseConnection() {
  if (!mainloop_) return;
  pa_threaded_mainloop_stop(mainloop_.get());
  spare_.reset();
  context_.reset();
  attempt_.reset();
  watch_.reset();
}

void PulseConnection::connect() {
  attempt_.reset();
  if (isReady()) {
    open(spare_);
  } else {
    isLinked_ = true;
    if (!open(context_)) handleLoss();
  }
}

bool PulseConnection::open(PulseHandle<pa_context>& context) {
  context.reset(pa_context_new_with_proplist(api_, "valdrix", properties().get()));
  if (!context) return false;
  pa_context_set_state_callback(
      context.get(),
      [](pa_context* changed, void* self) {
        static_cast<PulseConnection*>(self)->handleState(changed);
      },
      this);
  return pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0;
}

bool PulseConnection::isReady() const {
  return isLinked_ && context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY;
}

void PulseConnection::reconnect() {
  if (isReady()) scheduleAttempt(0);
}

void PulseConnection::useSpare() {
  context_ = std::move(spare_);
  callbacks_.onReady(context_.get());
}

void PulseConnection::handleState(pa_context* context) {
  const auto state = pa_context_get_state(context);
  if (!isLinked_) return;
  if (context == spare_.get()) {
    if (state == PA_CONTEXT_READY) useSpare();
    return;
  }
  if (state == PA_CONTEXT_FAILED || state == PA_CONTEXT_TERMINATED) return handleLoss();
  if (state != PA_CONTEXT_READY) return;
  watch_.reset();
  nextDelay_ = firstDelay;
  isRemote_ = pa_context_is_local(context_.get()) == 0;
  callbacks_.onReady(context_.get());
}

void PulseConnection::handleLoss() {
  // Connecting may both report a failed state and return an error.
  if (!std::exchange(isLinked_, false)) return;
  spare_.reset();
  callbacks_.onLost();
  startWatching();
  if (nextDelay_ > lastDelayBeforeRest && mayRest()) return;
  scheduleAttempt(nextDelay_);
  nextDelay_ = std::min(2 * nextDelay_, longestDelay);
}

bool PulseConnection::mayRest() {
  const bool isAbsent = context_ && pa_context_errno(context_.get()) == PA_ERR_CONNECTIONREFUSED;
  return isAbsent && !isRemote_ && watch_ && watch_->isWatching();
}

void PulseConnection::startWatching() {
  if (watch_ || !folder_) return;
  watch_ = std::make_unique<PulseFolderWatch>(api_, *folder_, [this] {
    // A socket that has just appeared may not accept yet.
    nextDelay_ = firstDelay;
    if (!isLinked_) scheduleAttempt(std::exchange(nextDelay_, 2 * firstDelay));
  });
}

void PulseConnection::scheduleAttempt(pa_usec_t delay) {
  timeval at{};
  pa_timeval_add(pa_gettimeofday(&at), delay);
  attempt_.reset(api_->time_new(
      api_, &at,
      [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
        static_cast<PulseConnection*>(self)->connect();
      },
      this));
}

}  // namespace valdrix::desktop
