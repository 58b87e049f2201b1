#pragma once

#include "desktop/audio/Mailbox.h"
#include "desktop/audio/PulseConnection.h"
#include "desktop/audio/PulseDevices.h"
#include "desktop/audio/PulseSinks.h"
#include "desktop/audio/SecondLook.h"
#include "desktop/audio/SnapshotGate.h"
#include "observation/Lifetime.h"
#include "platform/AudioHardware.h"
#include "platform/AudioPropertyListeners.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// The sinks of a PulseAudio server, or of PipeWire's, as audio devices.
///
/// With a server that answers within 50 ms the first values are there once the constructor returns;
/// without one it returns at once. A server that comes later, dies or restarts is picked up without
/// anybody's help.
///
/// Listeners fire for what changed for the user, and only then:
///
/// - A server that goes away changes nothing: reads give the last values, writes fail. When it is
///   back, the same sink is the same device; the default-device listener fires only when another
///   one is the default now, and volume and mute listeners only where the value is another.
/// - After a gap (no server yet, a restart, no output) the output counts once it has been the same
///   for a quarter of a second, or is as it was, or is written to. So the dummy output that servers
///   show at login until the cards are loaded, cards that come up one after the other, and stored
///   volumes that are restored a moment later do not show: the default-device listener fires once,
///   and by then the level is right.
/// - The loss of the last output counts after three seconds; the session's manager takes its sinks
///   away for about one when it restarts.
/// - Changing the default fires its listener once, and a device that goes fires none of its own.
///
/// What remains visible: a program that starts in the short time between a new server's first
/// output and the one that the user chose sees a change of device; a level that is another one
/// after a restart is reported as the change that it is. PipeWire's server (0.3.65 for one) now and
/// then doesn't tell a client of a new default; soon after it has appeared such a lapse is made up
/// for, see `SecondLook`, later it lasts until the next change.
///
/// A volume is the loudest channel over 100 % (above 1 when amplified); writing one, limited to 0
/// to 1, keeps the balance of the channels, through 0 as well. Another look at the server is made
/// beside the connection in use, so writes are taken meanwhile. Writes that come faster than the
/// server takes them give way to the latest. Nothing runs while nothing changes, and suspended
/// sinks stay suspended.
class PulseAudioHardware final : public platform::AudioHardware {
 public:
  explicit PulseAudioHardware(platform::RunLoop& runLoop);

  [[nodiscard]] platform::AudioStatus getPropertyData(
      platform::AudioObjectID object, const platform::AudioObjectPropertyAddress& address,
      std::uint32_t& value) const override;
  [[nodiscard]] platform::AudioStatus getPropertyData(
      platform::AudioObjectID object, const platform::AudioObjectPropertyAddress& address,
      float& value) const override;
  platform::AudioStatus setPropertyData(platform::AudioObjectID object,
                                        const platform::AudioObjectPropertyAddress& address,
                                        std::uint32_t value) override;
  platform::AudioStatus setPropertyData(platform::AudioObjectID object,
                                        const platform::AudioObjectPropertyAddress& address,
                                        float value) override;
  [[nodiscard]] Token addPropertyListenerBlock(platform::AudioObjectID object,
                                               const platform::AudioObjectPropertyAddress& address,
                                               std::function<void()> block) override;

 private:
  void receiveLatest();
  void believe(const PulseSnapshot& snapshot);
  /// The device if its sink can be written to now, else null. The user waits for what comes of it.
  [[nodiscard]] const PulseDevice* deviceToWrite(platform::AudioObjectID object);
  void tellDefaultDevice();
  platform::AudioStatus request(const std::string& sink, const SinkWrite& write);
  void flush();

  platform::RunLoop& runLoop_;
  platform::AudioPropertyListeners listeners_;
  PulseDevices devices_;
  SnapshotGate gate_;
  SecondLook secondLook_;
  SinkWrites requested_;
  Mailbox<PulseSnapshot> mailbox_;
  Lifetime lifetime_;
  PulseSinks sinks_;
  PulseConnection connection_;  // last: its thread uses the others
};

}  // namespace valdrix::desktop
