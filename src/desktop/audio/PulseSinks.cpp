#include "desktop/audio/PulseSinks.h"

#include <utility>

namespace valdrix::desktop {

namespace {

/// Lets an operation run on without being watched. Null means that the connection is going away.
bool start(pa_operation* operation) { return PulseHandle<pa_operation>(operation) != nullptr; }

}  // namespace

void merge(SinkWrites& writes, const SinkWrites& newer) {
  for (const auto& [name, write] : newer) {
    SinkWrite& merged = writes[name];
    if (write.volume) merged.volume = write.volume;
    if (write.isMuted) merged.isMuted = write.isMuted;
  }
}

PulseSinks::PulseSinks(std::function<void(const PulseSnapshot&)> deliver)
    : deliver_(std::move(deliver)) {}

void PulseSinks::attach(pa_context* context) {
  context_ = context;
  ++connections_;
  pa_context_set_subscribe_callback(
      context,
      [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
        static_cast<PulseSinks*>(self)->refresh();
      },
      this);
  constexpr auto events =
      static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER);
  start(pa_context_subscribe(context, events, nullptr, nullptr));
  refresh();
}

void PulseSinks::detach() {
  context_ = nullptr;
  isRefreshing_ = false;
  isStale_ = false;
  waiting_.clear();
  answersExpected_ = 0;
  deliver({});
}

void PulseSinks::refresh() {
  isStale_ = true;
  if (!context_ || isRefreshing_ || answersExpected_ > 0) return;
  isStale_ = false;
  isRefreshing_ = true;
  arriving_ = {.connection = connections_, .defaultSink = {}, .sinks = {}};
  start(pa_context_get_server_info(
      context_,
      [](pa_context*, const pa_server_info* info, void* self) {
        if (info && info->default_sink_name)
          static_cast<PulseSinks*>(self)->arriving_.defaultSink = info->default_sink_name;
      },
      this));
  start(pa_context_get_sink_info_list(
      context_,
      [](pa_context*, const pa_sink_info* info, int end, void* self) {
        auto& sinks = *static_cast<PulseSinks*>(self);
        if (end != 0) return sinks.finishRefresh();
        sinks.arriving_.sinks.push_back({info->name, info->volume, info->mute != 0});
      },
      this));
}

void PulseSinks::finishRefresh() {
  if (!std::exchange(isRefreshing_, false)) return;
  // The name of the default sink and the list of sinks are two answers; when the server changed in
  // between, they may not fit together, and then the next ones will.
  if (!isStale_ || arriving_.output()) deliver(arriving_);
  if (isStale_) refresh();
}

void PulseSinks::deliver(const PulseSnapshot& snapshot) {
  if (delivered_ == snapshot) return;
  delivered_ = snapshot;
  deliver_(snapshot);
}

void PulseSinks::write(const SinkWrites& writes) {
  if (!context_) return;
  merge(waiting_, writes);
  if (answersExpected_ == 0) send();
}

void PulseSinks::send() {
  constexpr auto answered = [](pa_context*, int, void* self) {
    static_cast<PulseSinks*>(self)->handleAnswer();
  };
  for (const auto& [name, write] : std::exchange(waiting_, {})) {
    if (write.isMuted)
      expectAnswer(pa_context_set_sink_mute_by_name(context_, name.c_str(), *write.isMuted ? 1 : 0,
                                                    answered, this));
    if (write.volume)
      expectAnswer(pa_context_set_sink_volume_by_name(context_, name.c_str(), &*write.volume,
                                                      answered, this));
  }
}

void PulseSinks::expectAnswer(pa_operation* operation) {
  if (start(operation)) ++answersExpected_;
}

void PulseSinks::handleAnswer() {
  if (answersExpected_ == 0 || --answersExpected_ > 0) return;
  if (isStale_) refresh();
  send();
}

}  // namespace valdrix::desktop
