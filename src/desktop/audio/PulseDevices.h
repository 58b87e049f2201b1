#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "desktop/audio/ChannelBalance.h"
#include "desktop/audio/PulseSnapshot.h"
#include "platform/AudioHardware.h"

namespace valdrix::desktop {

/// A sink as a device.
struct PulseDevice {
  platform::AudioObjectID id = 0;
  std::string sink;
  bool isPresent = false;
  /// Loudest channel over the full level without amplification, so above 1 when amplified; none
  /// while the sink has no volume.
  std::optional<float> volume;
  bool isMuted = false;
  ChannelBalance balance;
};

/// The devices that there are and were. A sink keeps its ID while the program lives, through its
/// server's restarts as well, and nobody else gets it.
class PulseDevices {
 public:
  struct Property {
    platform::AudioObjectID object;
    platform::AudioObjectPropertyAddress address;
  };

  /// Takes over what `snapshot` says. The properties that now read differently, the default device
  /// first. A device that goes away counts as none of them; one that comes back does where it
  /// differs from when it went.
  [[nodiscard]] std::vector<Property> update(const PulseSnapshot& snapshot);

  /// 0: there is none.
  [[nodiscard]] platform::AudioObjectID defaultDevice() const { return defaultDevice_; }
  /// The device while it is present, else null.
  [[nodiscard]] const PulseDevice* find(platform::AudioObjectID id) const;

 private:
  void updateDevice(const PulseSink& sink, std::vector<Property>& changed);

  std::map<std::string, PulseDevice> devices_;
  platform::AudioObjectID nextID_ = platform::audioSystemObject + 1;
  platform::AudioObjectID defaultDevice_ = 0;
};

}  // namespace valdrix::desktop
