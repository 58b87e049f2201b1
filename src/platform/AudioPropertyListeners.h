#pragma once

#include <functional>
#include <map>
#include <utility>

#include "observation/Listeners.h"
#include "platform/AudioHardware.h"

namespace valdrix::platform {

/// The listeners of an audio adapter, by property. Main thread only.
class AudioPropertyListeners {
 public:
  [[nodiscard]] Token add(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          std::function<void()> block) {
    return listeners_[{object, address}].add(std::move(block));
  }

  /// Whether anybody listens to the property.
  [[nodiscard]] bool hasAny(AudioObjectID object, const AudioObjectPropertyAddress& address) const {
    const auto found = listeners_.find({object, address});
    return found != listeners_.end() && !found->second.isEmpty();
  }

  /// Calls the listeners of one property, in the order in which they were added.
  void call(AudioObjectID object, const AudioObjectPropertyAddress& address) const {
    if (const auto found = listeners_.find({object, address}); found != listeners_.end())
      found->second.notify();
  }

 private:
  std::map<std::pair<AudioObjectID, AudioObjectPropertyAddress>, Listeners<>> listeners_;
};

}  // namespace valdrix::platform
