#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "platform/MediaKey.h"

namespace valdrix::desktop {

/// A press, repeat or release of a media key.
struct MediaKeyEvent {
  platform::MediaKey key;
  bool isDown;
  bool isRepeat;
  std::uint32_t modifierFlags;  ///< `platform::modifierFlag`
};

/// How a media key stands.
enum class KeyState {
  held,      ///< it comes to this program and to no other
  taken,     ///< another program has it
  withheld,  ///< the window system gives it to no program
  absent,    ///< it is on no keyboard
  released,  ///< it is not wanted and left to the desktop
};

/// One way in which media keys come to this program. Main thread only.
class KeySource {
 public:
  /// What a source tells.
  struct Events {
    /// A key that it holds went down, repeats or went up.
    std::function<void(const MediaKeyEvent&)> pressed;
    /// `offers` or `state` answers otherwise than before. Never called from within `hold`.
    std::function<void()> changed;
  };
  using Maker = std::function<std::unique_ptr<KeySource>(Events)>;

  virtual ~KeySource() = default;

  /// As the status names it.
  [[nodiscard]] virtual std::string name() const = 0;
  /// Whether the key is to be had this way here, as far as is known now.
  [[nodiscard]] virtual bool offers(platform::MediaKey key) const = 0;
  /// Holds exactly these keys from now on and gives all others up. Keys that cannot be had now are
  /// taken as soon as they can.
  virtual void hold(const std::set<platform::MediaKey>& keys) = 0;
  /// How a key stands that is held, or was to be.
  [[nodiscard]] virtual KeyState state(platform::MediaKey key) const = 0;
};

}  // namespace valdrix::desktop
