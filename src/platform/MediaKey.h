#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace valdrix::platform {

/// The auxiliary control keys that are intercepted, by the key code that their events carry.
enum class MediaKey : std::uint32_t {
  volumeUp = 0,
  volumeDown = 1,
  brightnessUp = 2,
  brightnessDown = 3,
  mute = 7,
};

/// All of them, in the order in which they are listed for a user, with the word that stands for
/// each in commands and files.
struct NamedMediaKey {
  MediaKey key;
  std::string_view word;
};
inline constexpr std::array<NamedMediaKey, 5> mediaKeys{
    {{MediaKey::volumeUp, "volume-up"},
     {MediaKey::volumeDown, "volume-down"},
     {MediaKey::mute, "mute"},
     {MediaKey::brightnessUp, "brightness-up"},
     {MediaKey::brightnessDown, "brightness-down"}}};

/// The key with `code`; nothing for a code that is not intercepted.
[[nodiscard]] constexpr std::optional<MediaKey> mediaKeyWithCode(std::uint32_t code) {
  const auto* const found =
      std::ranges::find(mediaKeys, static_cast<MediaKey>(code), &NamedMediaKey::key);
  return found == mediaKeys.end() ? std::nullopt : std::optional(found->key);
}

/// The key that `word` stands for; nothing for another word.
[[nodiscard]] constexpr std::optional<MediaKey> mediaKeyWithWord(std::string_view word) {
  const auto* const found = std::ranges::find(mediaKeys, word, &NamedMediaKey::word);
  return found == mediaKeys.end() ? std::nullopt : std::optional(found->key);
}

/// The word that stands for the key.
[[nodiscard]] constexpr std::string_view wordOf(MediaKey key) {
  return std::ranges::find(mediaKeys, key, &NamedMediaKey::key)->word;
}

/// Whether the key changes the brightness; the others change the volume.
[[nodiscard]] constexpr bool isBrightnessKey(MediaKey key) {
  return key == MediaKey::brightnessUp || key == MediaKey::brightnessDown;
}

}  // namespace valdrix::platform
