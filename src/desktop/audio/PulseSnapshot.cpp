#include "desktop/audio/PulseSnapshot.h"

#include <algorithm>
#include <string_view>

namespace valdrix::desktop {

namespace {

// Servers put up a dummy under this name while they have no other sink, as they do at every login
// until the sound cards are loaded.
constexpr std::string_view dummySink = "auto_null";

bool isDummy(const std::string& name) {
  return name == dummySink || name.starts_with(std::string(dummySink) + '.');
}

}  // namespace

bool PulseSink::operator==(const PulseSink& other) const {
  return name == other.name && isMuted == other.isMuted && hasVolume() == other.hasVolume() &&
         (!hasVolume() || pa_cvolume_equal(&volume, &other.volume));
}

const PulseSink* PulseSnapshot::find(const std::string& name) const {
  const auto sink = std::ranges::find(sinks, name, &PulseSink::name);
  return sink == sinks.end() ? nullptr : &*sink;
}

const PulseSink* PulseSnapshot::output() const {
  return isDummy(defaultSink) ? nullptr : find(defaultSink);
}

bool PulseSnapshot::hasUnnamedOutput() const {
  return !output() &&
         std::ranges::any_of(sinks, [](const PulseSink& sink) { return !isDummy(sink.name); });
}

}  // namespace valdrix::desktop
