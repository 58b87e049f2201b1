#pragma once

#include <cstdint>
#include <optional>

namespace valdrix {

/// The auxiliary control keys that are intercepted, by the key code that their events carry.
enum class MediaKey : std::uint32_t {
  volumeUp = 0,
  volumeDown = 1,
  brightnessUp = 2,
  brightnessDown = 3,
  mute = 7,
};

/// The key with `code`; nothing for a code that is not intercepted.
[[nodiscard]] constexpr std::optional<MediaKey> mediaKeyWithCode(std::uint32_t code) {
  switch (static_cast<MediaKey>(code)) {
    case MediaKey::volumeUp:
    case MediaKey::volumeDown:
    case MediaKey::brightnessUp:
    case MediaKey::brightnessDown:
    case MediaKey::mute:
      return static_cast<MediaKey>(code);
  }
  return std::nullopt;
}

/// Whether the key changes the brightness; the others change the volume.
[[nodiscard]] constexpr bool isBrightnessKey(MediaKey key) {
  return key == MediaKey::brightnessUp || key == MediaKey::brightnessDown;
}

}  // namespace valdrix
