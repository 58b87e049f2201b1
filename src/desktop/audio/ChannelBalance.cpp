#include "desktop/audio/ChannelBalance.h"

#include <algorithm>

namespace valdrix::desktop {

namespace {

// A server that calculates in other units gives volumes back one off.
bool isAlmostEqual(const pa_cvolume& a, const pa_cvolume& b) {
  for (unsigned i = 0; i < a.channels; ++i) {
    const auto [low, high] = std::minmax(a.values[i], b.values[i]);
    if (high - low > 1) return false;
  }
  return true;
}

}  // namespace

void ChannelBalance::observe(const pa_cvolume& volume) {
  if (volume.channels == shape_.channels &&
      isAlmostEqual(scaledTo(pa_cvolume_max(&volume)), volume))
    return;
  shape_ = volume;
}

pa_cvolume ChannelBalance::scaledTo(pa_volume_t loudest) const {
  pa_cvolume scaled = shape_;
  // Scaling silence makes all channels equal, which is right for a sink that was never heard.
  pa_cvolume_scale(&scaled, loudest);
  return scaled;
}

}  // namespace valdrix::desktop
