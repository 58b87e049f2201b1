#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <pulse/volume.h>

namespace valdrix::desktop {

/// One output of the sound server.
struct PulseSink {
  /// Stays the same when the server restarts or the hardware comes back.
  std::string name;
  /// Not valid when the sink has no volume.
  pa_cvolume volume{};
  bool isMuted = false;

  [[nodiscard]] bool hasVolume() const { return pa_cvolume_valid(&volume) != 0; }
  bool operator==(const PulseSink& other) const;
};

/// What the sound server said last.
struct PulseSnapshot {
  /// Which run of a server it comes from, counted from 1; 0 while there is none.
  std::uint64_t server = 0;
  /// Which connection it came by, counted from 1; one server may be asked over several.
  std::uint64_t connection = 0;
  /// Whether the server is PipeWire's.
  bool isPipeWire = false;
  std::string defaultSink;
  std::vector<PulseSink> sinks;

  [[nodiscard]] const PulseSink* find(const std::string& name) const;
  /// The sink that sound goes to, if there is one that anybody could hear.
  [[nodiscard]] const PulseSink* output() const;
  /// Whether there is a sink that could be heard, but none that sound goes to.
  [[nodiscard]] bool hasUnnamedOutput() const;
  bool operator==(const PulseSnapshot&) const = default;
};

}  // namespace valdrix::desktop
