#include "desktop/audio/PulseDevices.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

namespace {

std::optional<float> scalarVolume(const PulseSink& sink) {
  if (!sink.hasVolume()) return std::nullopt;
  return static_cast<float>(pa_cvolume_max(&sink.volume)) / static_cast<float>(PA_VOLUME_NORM);
}

}  // namespace

std::vector<PulseDevices::Property> PulseDevices::update(const PulseSnapshot& snapshot) {
  std::vector<Property> changed;
  for (auto& [name, device] : devices_) device.isPresent = false;
  for (const auto& sink : snapshot.sinks) updateDevice(sink, changed);

  const PulseSink* output = snapshot.output();
  const auto id = output ? devices_.at(output->name).id : 0;
  if (std::exchange(defaultDevice_, id) != id)
    changed.insert(changed.begin(),
                   {platform::audioSystemObject, platform::audioAddress::defaultOutputDevice});
  return changed;
}

void PulseDevices::updateDevice(const PulseSink& sink, std::vector<Property>& changed) {
  PulseDevice& device = devices_[sink.name];
  const bool isNew = device.id == 0;
  if (isNew) {
    device.id = nextID_++;
    device.sink = sink.name;
  }
  device.isPresent = true;
  if (sink.hasVolume()) device.balance.observe(sink.volume);

  const auto volume = scalarVolume(sink);
  if (std::exchange(device.volume, volume) != volume && !isNew)
    changed.push_back({device.id, platform::audioAddress::volume});
  if (std::exchange(device.isMuted, sink.isMuted) != sink.isMuted && !isNew)
    changed.push_back({device.id, platform::audioAddress::mute});
}

const PulseDevice* PulseDevices::find(platform::AudioObjectID id) const {
  const auto device =
      std::ranges::find_if(devices_, [&](const auto& entry) { return entry.second.id == id; });
  return device != devices_.end() && device->second.isPresent ? &device->second : nullptr;
}

}  // namespace valdrix::desktop
