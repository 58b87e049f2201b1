#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/AudioHardware.h"

namespace valdrix::platform {

/// The listeners of an audio adapter. Main thread only. While listeners are being called, others
/// may be added, which are not called yet, and removed, which are not called any more.
class AudioPropertyListeners {
 public:
  [[nodiscard]] Token add(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          std::function<void()> block) {
    const auto id = nextId_++;
    const auto shared = std::make_shared<const std::function<void()>>(std::move(block));
    listeners_->emplace(id, Listener{object, address, shared});
    return Token([listeners = std::weak_ptr<Listeners>(listeners_), id] {
      if (const auto alive = listeners.lock()) alive->erase(id);
    });
  }

  /// Whether anybody listens to the property.
  [[nodiscard]] bool hasAny(AudioObjectID object, const AudioObjectPropertyAddress& address) const {
    return std::ranges::any_of(*listeners_, [&](const auto& entry) {
      return entry.second.object == object && entry.second.address == address;
    });
  }

  /// Calls the listeners of one property, in the order in which they were added.
  void call(AudioObjectID object, const AudioObjectPropertyAddress& address) const {
    const auto listeners = listeners_;
    std::vector<std::uint64_t> due;
    for (const auto& [id, listener] : *listeners)
      if (listener.object == object && listener.address == address) due.push_back(id);
    for (const auto id : due) {
      const auto found = listeners->find(id);
      if (found == listeners->end()) continue;
      const auto block = found->second.block;
      (*block)();
    }
  }

 private:
  struct Listener {
    AudioObjectID object;
    AudioObjectPropertyAddress address;
    std::shared_ptr<const std::function<void()>> block;
  };
  using Listeners = std::map<std::uint64_t, Listener>;

  std::shared_ptr<Listeners> listeners_ = std::make_shared<Listeners>();
  std::uint64_t nextId_ = 1;
};

}  // namespace valdrix::platform
