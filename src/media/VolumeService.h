#pragma once

#include <functional>

#include "observation/Lifetime.h"
#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/AudioHardware.h"

namespace valdrix {

/// The volume and mute state of the default output device: observed, followed from device to
/// device, and changed on request. Never polls: a request only writes to the device, and the
/// device's report is what changes `level` and `isMuted`. Failures change nothing. Main thread
/// only.
class VolumeService {
 public:
  /// Binds to the default output device and reads its level, without a report.
  explicit VolumeService(platform::AudioHardware& hardware);
  ~VolumeService();
  VolumeService(const VolumeService&) = delete;
  VolumeService& operator=(const VolumeService&) = delete;

  /// The volume that was last read, from 0 to 1.
  [[nodiscard]] float level() const { return level_; }
  [[nodiscard]] bool isMuted() const { return isMuted_; }
  /// The device in use; 0 while there is none.
  [[nodiscard]] platform::AudioObjectID deviceID() const { return deviceID_; }

  /// Called with the level (0 to 1) and the mute state after they have changed.
  void setOnVolumeChanged(std::function<void(float level, bool isMuted)> onVolumeChanged);

  /// Moves the volume by `delta`, held to 0 to 1. Raising a muted volume unmutes, lowering does
  /// not.
  void adjust(float delta);
  void toggleMute();

 private:
  void installDefaultDeviceListener();
  void refresh(bool initial);
  void handlePropertyChange();
  void emitChange();
  void attachDeviceListeners(platform::AudioObjectID device);
  void detachDeviceListeners();
  [[nodiscard]] float readVolume() const;
  [[nodiscard]] bool readMute() const;

  platform::AudioHardware& hardware_;

  Observed<float> level_{0.0F};
  Observed<bool> isMuted_{false};
  std::function<void(float, bool)> onVolumeChanged_;
  Observed<platform::AudioObjectID> deviceID_{0U};
  Token volumeListener_;
  Token muteListener_;
  Token defaultDeviceListener_;
  Observed<bool> hasEmittedInitial_{false};
  Lifetime lifetime_;
};

}  // namespace valdrix
