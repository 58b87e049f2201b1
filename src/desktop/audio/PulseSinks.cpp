#include "desktop/audio/PulseSinks.h"

#include <string_view>
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
  if (!std::exchange(context_, context)) ++servers_;
  ++connections_;
  isRefreshing_ = false;
  answersExpected_ = 0;
  merge(underWay_, std::exchange(waiting_, {}));
  std::swap(underWay_, waiting_);
  subscribe();
  send();
  refresh();
}

void PulseSinks::subscribe() {
  pa_context_set_subscribe_callback(
      context_,
      [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
        static_cast<PulseSinks*>(self)->refresh();
      },
      this);
  constexpr auto events =
      static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER);
  start(pa_context_subscribe(context_, events, nullptr, nullptr));
}

void PulseSinks::detach() {
  context_ = nullptr;
  isRefreshing_ = false;
  isStale_ = false;
  waiting_.clear();
  underWay_.clear();
  answersExpected_ = 0;
  deliver({});
}

void PulseSinks::refresh() {
  isStale_ = true;
  if (!context_ || isRefreshing_ || answersExpected_ > 0) return;
  isStale_ = false;
  isRefreshing_ = true;
  arriving_ = {.server = servers_, .connection = connections_, .defaultSink = {}, .sinks = {}};
  start(pa_context_get_server_info(
      context_,
      [](pa_context*, const pa_server_info* info, void* self) {
        if (info) static_cast<PulseSinks*>(self)->takeServer(*info);
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

void PulseSinks::takeServer(const pa_server_info& info) {
  const auto text = [](const char* string) { return std::string_view(string ? string : ""); };
  arriving_.defaultSink = text(info.default_sink_name);
  // It says "PulseAudio (on PipeWire 0.3.65)"; the other one "pulseaudio".
  arriving_.isPipeWire = text(info.server_name).find("PipeWire") != std::string_view::npos;
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
  underWay_ = std::exchange(waiting_, {});
  for (const auto& [name, write] : underWay_) {
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
