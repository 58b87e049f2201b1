#include "sim/SimAudioHardware.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace valdrix::sim {

using platform::AudioObjectID;
using platform::AudioObjectPropertyAddress;
using platform::AudioStatus;
namespace audioAddress = platform::audioAddress;

namespace {

constexpr AudioStatus success = 0;
constexpr AudioStatus failure = -1;

}  // namespace

SimAudioHardware::SimAudioHardware(Trace& trace, ManualRunLoop& runLoop)
    : trace_(trace), runLoop_(runLoop) {}

AudioObjectID SimAudioHardware::addDevice(std::string_view name, std::optional<float> volume,
                                          bool isMuted) {
  const auto id = static_cast<AudioObjectID>(platform::audioSystemObject + 1 + devices_.size());
  devices_.emplace(id, Device{std::string(name), volume, isMuted});
  if (defaultDevice_ == 0) setDefaultDevice(id);
  return id;
}

void SimAudioHardware::removeDevice(AudioObjectID device) {
  Device* removed = present(device);
  if (!removed) return;
  removed->isPresent = false;
  if (device != defaultDevice_) return;
  const auto next =
      std::ranges::find_if(devices_, [](const auto& entry) { return entry.second.isPresent; });
  setDefaultDevice(next == devices_.end() ? 0 : next->first);
}

AudioObjectID SimAudioHardware::device(std::string_view name) const {
  AudioObjectID latest = 0;
  for (const auto& [id, device] : devices_)
    if (device.name == name) latest = id;
  return latest;
}

void SimAudioHardware::setDefaultDevice(AudioObjectID device) {
  happen([this, device] {
    const auto chosen = present(device) ? device : 0;
    if (std::exchange(defaultDevice_, chosen) != chosen)
      notify(platform::audioSystemObject, audioAddress::defaultOutputDevice);
  });
}

void SimAudioHardware::changeVolume(AudioObjectID device, std::optional<float> volume) {
  happen([this, device, volume] {
    Device* found = present(device);
    if (found && std::exchange(found->volume, volume) != volume)
      notify(device, audioAddress::volume);
  });
}

void SimAudioHardware::changeMute(AudioObjectID device, bool isMuted) {
  happen([this, device, isMuted] {
    Device* found = present(device);
    if (found && std::exchange(found->isMuted, isMuted) != isMuted)
      notify(device, audioAddress::mute);
  });
}

void SimAudioHardware::setAnswerDelay(double delay) {
  answerDelay_ = delay;
  if (std::isinf(delay)) return;
  for (const auto& change : std::exchange(heldBack_, {})) change();
}

void SimAudioHardware::happen(std::function<void()> change) {
  if (std::isinf(answerDelay_))
    heldBack_.push_back(std::move(change));
  else if (answerDelay_ > 0)
    late_.push_back(runLoop_.scheduleDesktopTimer(answerDelay_, std::move(change)));
  else
    change();
}

void SimAudioHardware::notify(AudioObjectID object, const AudioObjectPropertyAddress& address) {
  // Who listens from now on finds the change made.
  if (!listeners_.hasAny(object, address)) return;
  runLoop_.async(lifetime_.weak([this, object, address] { listeners_.call(object, address); }));
}

AudioStatus SimAudioHardware::getPropertyData(AudioObjectID object,
                                              const AudioObjectPropertyAddress& address,
                                              std::uint32_t& value) const {
  if (object == platform::audioSystemObject && address == audioAddress::defaultOutputDevice) {
    if (readsFail_) return failure;
    value = defaultDevice_;
    return success;
  }
  const Device* device = present(object);
  if (!device || readsFail_ || address != audioAddress::mute) return failure;
  value = device->isMuted ? 1 : 0;
  return success;
}

AudioStatus SimAudioHardware::getPropertyData(AudioObjectID object,
                                              const AudioObjectPropertyAddress& address,
                                              float& value) const {
  const Device* device = present(object);
  if (!device || readsFail_ || address != audioAddress::volume || !device->volume) return failure;
  value = *device->volume;
  return success;
}

AudioStatus SimAudioHardware::setPropertyData(AudioObjectID object,
                                              const AudioObjectPropertyAddress& address,
                                              std::uint32_t value) {
  const bool isPossible = present(object) && !writesFail_ && address == audioAddress::mute;
  const AudioStatus status = isPossible ? success : failure;
  traceWrite(object, "mute " + std::to_string(value), status);
  if (status == success && !writesAreLost_)
    runLoop_.async(lifetime_.weak([this, object, value] { changeMute(object, value != 0); }));
  return status;
}

AudioStatus SimAudioHardware::setPropertyData(AudioObjectID object,
                                              const AudioObjectPropertyAddress& address,
                                              float value) {
  const Device* device = present(object);
  const bool isPossible = device && device->volume && !writesFail_ &&
                          address == audioAddress::volume && !std::isnan(value);
  const AudioStatus status = isPossible ? success : failure;
  traceWrite(object, "volume " + formatNumber(static_cast<double>(value)), status);
  if (isPossible && value >= 1 && *device->volume > 1)
    notify(platform::audioSystemObject, audioAddress::defaultOutputDevice);
  else if (status == success && !writesAreLost_)
    runLoop_.async(lifetime_.weak(
        [this, object, level = std::clamp(value, 0.0F, 1.0F)] { changeVolume(object, level); }));
  return status;
}

Token SimAudioHardware::addPropertyListenerBlock(AudioObjectID object,
                                                 const AudioObjectPropertyAddress& address,
                                                 std::function<void()> block) {
  return listeners_.add(object, address, std::move(block));
}

SimAudioHardware::Device* SimAudioHardware::present(AudioObjectID device) {
  return const_cast<Device*>(std::as_const(*this).present(device));
}

const SimAudioHardware::Device* SimAudioHardware::present(AudioObjectID device) const {
  const auto found = devices_.find(device);
  return found != devices_.end() && found->second.isPresent ? &found->second : nullptr;
}

void SimAudioHardware::traceWrite(AudioObjectID object, std::string_view what, AudioStatus status) {
  const auto found = devices_.find(object);
  const std::string name =
      found == devices_.end() ? std::to_string(object) : '"' + found->second.name + '"';
  trace_.add("audio " + name + ' ' + std::string(what) + (status == success ? "" : " failed"));
}

}  // namespace valdrix::sim
