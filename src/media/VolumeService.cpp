#include "media/VolumeService.h"

#include <cmath>
#include <cstdint>
#include <utility>

#include "media/Level.h"

namespace valdrix {

namespace address = platform::audioAddress;

namespace {

/// A smaller move of the volume is noise of a device's own arithmetic, not a change.
constexpr float noticeableChange = 0.0001F;

}  // namespace

VolumeService::VolumeService(platform::AudioHardware& hardware) : hardware_(hardware) {
  installDefaultDeviceListener();
  refresh(true);
}

VolumeService::~VolumeService() {
  defaultDeviceListener_.reset();
  detachDeviceListeners();
}

void VolumeService::setOnVolumeChanged(std::function<void(float, bool)> onVolumeChanged) {
  onVolumeChanged_ = std::move(onVolumeChanged);
}

void VolumeService::installDefaultDeviceListener() {
  defaultDeviceListener_ =
      hardware_.addPropertyListenerBlock(platform::audioSystemObject, address::defaultOutputDevice,
                                         lifetime_.weak([this] { refresh(false); }));
}

float VolumeService::readVolume() const {
  float value = 0;
  if (hardware_.getPropertyData(deviceID_, address::volume, value) != 0) return 0;
  // Not a number counts as silence here, where `clampedLevel` would make it full volume.
  return value >= 0 ? clampedLevel(value) : 0;
}

bool VolumeService::readMute() const {
  std::uint32_t value = 0;
  return hardware_.getPropertyData(deviceID_, address::mute, value) == 0 && value != 0;
}

void VolumeService::refresh(bool initial) {
  platform::AudioObjectID device = 0;
  if (hardware_.getPropertyData(platform::audioSystemObject, address::defaultOutputDevice,
                                device) != 0 ||
      device == 0)
    return;
  if (device != deviceID_) {
    detachDeviceListeners();
    deviceID_ = device;
    attachDeviceListeners(device);
  }
  const float volume = readVolume();
  const bool muted = readMute();
  level_ = volume;
  isMuted_ = muted;
  // The first device that is found, be it long after the start, is where we begin and not news.
  if (initial || !hasEmittedInitial_)
    hasEmittedInitial_ = true;
  else
    emitChange();
}

void VolumeService::handlePropertyChange() {
  if (deviceID_ == 0) return;
  const float volume = readVolume();
  const bool muted = readMute();
  const bool hasChanged = std::abs(volume - level_) > noticeableChange || muted != isMuted_;
  level_ = volume;
  isMuted_ = muted;
  if (hasChanged && hasEmittedInitial_) emitChange();
}

void VolumeService::emitChange() {
  if (onVolumeChanged_) onVolumeChanged_(level_, isMuted_);
}

void VolumeService::adjust(float delta) {
  if (deviceID_ == 0) return;
  if (isMuted_ && delta > 0) hardware_.setPropertyData(deviceID_, address::mute, std::uint32_t{0});
  hardware_.setPropertyData(deviceID_, address::volume, clampedLevel(level_ + delta));
}

void VolumeService::toggleMute() {
  if (deviceID_ == 0) return;
  hardware_.setPropertyData(deviceID_, address::mute, std::uint32_t{isMuted_ ? 0U : 1U});
}

void VolumeService::attachDeviceListeners(platform::AudioObjectID device) {
  if (device == 0) return;
  const auto block = lifetime_.weak([this] { handlePropertyChange(); });
  volumeListener_ = hardware_.addPropertyListenerBlock(device, address::volume, block);
  muteListener_ = hardware_.addPropertyListenerBlock(device, address::mute, block);
}

void VolumeService::detachDeviceListeners() {
  volumeListener_.reset();
  muteListener_.reset();
}

}  // namespace valdrix
