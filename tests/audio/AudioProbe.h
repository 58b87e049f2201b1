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

  [[nodiscard]] platform::AudioObjectID defaultDevice() const {
    return read<std::uint32_t>(platform::audioSystemObject,
                               platform::audioAddress::defaultOutputDevice)
        .value_or(0);
  }
  [[nodiscard]] std::optional<float> volume(platform::AudioObjectID device) const {
    return read<float>(device, platform::audioAddress::volume);
  }
  [[nodiscard]] std::optional<bool> isMuted(platform::AudioObjectID device) const {
    const auto value = read<std::uint32_t>(device, platform::audioAddress::mute);
    return value ? std::optional(*value != 0) : std::nullopt;
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
  template <class T>
  [[nodiscard]] std::optional<T> read(platform::AudioObjectID object,
                                      const platform::AudioObjectPropertyAddress& address) const {
    T value{};
    const bool isRead = hardware_.getPropertyData(object, address, value) == 0;
    return isRead ? std::optional(value) : std::nullopt;
  }

  platform::AudioHardware& hardware_;
  Token defaultListener_;
  Token volumeListener_;
  Token muteListener_;
};

}  // namespace valdrix::tests
