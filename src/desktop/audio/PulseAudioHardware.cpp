#include "desktop/audio/PulseAudioHardware.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace valdrix::desktop {

using platform::AudioObjectID;
using platform::AudioObjectPropertyAddress;
using platform::AudioStatus;
namespace audioAddress = platform::audioAddress;

namespace {

constexpr std::chrono::milliseconds longestStart{50};

constexpr AudioStatus success = 0;
constexpr auto badObject = static_cast<AudioStatus>(platform::fourCharacterCode("!obj"));
constexpr auto badValue = static_cast<AudioStatus>(platform::fourCharacterCode("nope"));
constexpr auto unknownProperty = static_cast<AudioStatus>(platform::fourCharacterCode("who?"));

}  // namespace

PulseAudioHardware::PulseAudioHardware(platform::RunLoop& runLoop)
    : runLoop_(runLoop),
      gate_(runLoop, [this](const PulseSnapshot& snapshot) { believe(snapshot); }),
      secondLook_(runLoop, [this] { connection_.perform([this] { connection_.reconnect(); }); }),
      sinks_([this, receive = lifetime_.weak([this] { receiveLatest(); })](
                 const PulseSnapshot& snapshot) {
        if (mailbox_.put(snapshot)) runLoop_.async(receive);
      }),
      connection_({.onReady = [this](pa_context* context) { sinks_.attach(context); },
                   .onLost = [this] { sinks_.detach(); }}) {
  mailbox_.waitForFirst(longestStart);
  if (const auto first = mailbox_.take()) {
    secondLook_.receive(*first);
    gate_.receive(*first);
  }
}

void PulseAudioHardware::receiveLatest() {
  const auto snapshot = mailbox_.take();
  if (!snapshot) return;
  secondLook_.receive(*snapshot);
  gate_.receive(*snapshot);
}

void PulseAudioHardware::believe(const PulseSnapshot& snapshot) {
  for (const auto& [object, address] : devices_.update(snapshot)) listeners_.call(object, address);
}

AudioStatus PulseAudioHardware::getPropertyData(AudioObjectID object,
                                                const AudioObjectPropertyAddress& address,
                                                std::uint32_t& value) const {
  if (object == platform::audioSystemObject) {
    if (address != audioAddress::defaultOutputDevice) return unknownProperty;
    value = devices_.defaultDevice();
    return success;
  }
  const PulseDevice* device = devices_.find(object);
  if (!device) return badObject;
  if (address != audioAddress::mute) return unknownProperty;
  value = device->isMuted ? 1 : 0;
  return success;
}

AudioStatus PulseAudioHardware::getPropertyData(AudioObjectID object,
                                                const AudioObjectPropertyAddress& address,
                                                float& value) const {
  const PulseDevice* device = devices_.find(object);
  if (!device) return badObject;
  if (address != audioAddress::volume || !device->volume) return unknownProperty;
  value = *device->volume;
  return success;
}

AudioStatus PulseAudioHardware::setPropertyData(AudioObjectID object,
                                                const AudioObjectPropertyAddress& address,
                                                std::uint32_t value) {
  const PulseDevice* device = deviceToWrite(object);
  if (!device) return badObject;
  if (address != audioAddress::mute) return unknownProperty;
  return request(device->sink, {.volume = {}, .isMuted = value != 0});
}

AudioStatus PulseAudioHardware::setPropertyData(AudioObjectID object,
                                                const AudioObjectPropertyAddress& address,
                                                float value) {
  const PulseDevice* device = deviceToWrite(object);
  if (!device) return badObject;
  if (address != audioAddress::volume || !device->volume) return unknownProperty;
  if (std::isnan(value)) return badValue;
  if (value >= 1 && *device->volume > 1) {
    tellDefaultDevice();
    return success;
  }
  const double loudest = std::clamp(static_cast<double>(value), 0.0, 1.0) * PA_VOLUME_NORM;
  const auto volume = device->balance.scaledTo(static_cast<pa_volume_t>(std::lround(loudest)));
  return request(device->sink, {.volume = volume, .isMuted = {}});
}

const PulseDevice* PulseAudioHardware::deviceToWrite(AudioObjectID object) {
  const PulseDevice* device = devices_.find(object);
  if (!device) return nullptr;
  gate_.expectChange(device->sink);
  return gate_.latest().find(device->sink) ? device : nullptr;
}

void PulseAudioHardware::tellDefaultDevice() {
  runLoop_.async(lifetime_.weak(
      [this] { listeners_.call(platform::audioSystemObject, audioAddress::defaultOutputDevice); }));
}

AudioStatus PulseAudioHardware::request(const std::string& sink, const SinkWrite& write) {
  // What is written in one turn of the loop goes out together, and so comes back together.
  if (requested_.empty()) runLoop_.async(lifetime_.weak([this] { flush(); }));
  merge(requested_, {{sink, write}});
  return success;
}

void PulseAudioHardware::flush() {
  connection_.perform([&] { sinks_.write(std::exchange(requested_, {})); });
}

Token PulseAudioHardware::addPropertyListenerBlock(AudioObjectID object,
                                                   const AudioObjectPropertyAddress& address,
                                                   std::function<void()> block) {
  return listeners_.add(object, address, std::move(block));
}

}  // namespace valdrix::desktop
