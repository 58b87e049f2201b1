#pragma once

#include <pulse/volume.h>

namespace valdrix::desktop {

/// The proportions in which a sink's channels are loud, kept while they cannot be seen: at volume
/// 0, where they are all alike, and next to it, where rounding blurs them.
class ChannelBalance {
 public:
  /// Takes in a volume of the sink.
  void observe(const pa_cvolume& volume);
  /// The volume whose loudest channel is `loudest`. Needs a valid volume observed before.
  [[nodiscard]] pa_cvolume scaledTo(pa_volume_t loudest) const;

 private:
  pa_cvolume shape_{};
};

}  // namespace valdrix::desktop
