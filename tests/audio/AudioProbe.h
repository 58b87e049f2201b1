#pragma once

#include <cstdint>
#include <optional>

#include "platform/AudioHardware.h"

namespace valdrix::tests {

/// Reads an audio adapter and counts what its listeners are told.
class AudioProbe {
 public:
  explicit AudioProbe(platform::AudioHardware& hardware) : hardware_(hardware) {
    defaultListener_ = hardware.addPropertyListenerBlock(
        platform::audioSystemObject, platform::audioAddress::defaultOutputDevice,
        [this] { ++defaultNotices; });
  }

  /// Listens to `device`'s volume and mute from now on.
  void listenTo(platform::AudioObjectID device) {
    volumeListener_ = hardware_.addPropertyListenerBlock(device, platform::audioAddress::volume,
                                                         [this] { ++volumeNotices; });
    muteListener_ = hardware_.addPropertyListenerBlock(device, platform::audioAddress::mute,
                                                       [this] { ++muteNotices; });
  }
  void forget() {
    volumeListener_.reset();
    muteListener_.reset();
  }

  [[nodiscard]] platform::AudioObjectID defaultDevice() const {
    platform::AudioObjectID device = 0;
    const auto status = hardware_.getPropertyData(
        platform::audioSystemObject, platform::audioAddress::defaultOutputDevice, device);
    return status == 0 ? device : 0;
  }
  [[nodiscard]] std::optional<float> volume(platform::AudioObjectID device) const {
    float value = 0;
    if (hardware_.getPropertyData(device, platform::audioAddress::volume, value) != 0)
      return std::nullopt;
    return value;
  }
  [[nodiscard]] std::optional<bool> isMuted(platform::AudioObjectID device) const {
    std::uint32_t value = 0;
    if (hardware_.getPropertyData(device, platform::audioAddress::mute, value) != 0)
      return std::nullopt;
    return value != 0;
  }
  [[nodiscard]] bool setVolume(platform::AudioObjectID device, float volume) {
    return hardware_.setPropertyData(device, platform::audioAddress::volume, volume) == 0;
  }
  [[nodiscard]] bool setMuted(platform::AudioObjectID device, bool isMuted) {
    return hardware_.setPropertyData(device, platform::audioAddress::mute,
                                     std::uint32_t{isMuted ? 1U : 0U}) == 0;
  }

  int defaultNotices = 0;
  int volumeNotices = 0;
  int muteNotices = 0;

 private:
  platform::AudioHardware& hardware_;
  Token defaultListener_;
  Token volumeListener_;
  Token muteListener_;
};

}  // namespace valdrix::tests
