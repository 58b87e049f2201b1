#pragma once

#include <cstdint>
#include <functional>

#include "observation/Token.h"

namespace valdrix::platform {

using AudioObjectID = std::uint32_t;

/// Names a property of an audio object. Selector and scope are four-character codes, their first
/// character in the most significant byte.
struct AudioObjectPropertyAddress {
  std::uint32_t selector = 0;
  std::uint32_t scope = 0;
  std::uint32_t element = 0;
  auto operator<=>(const AudioObjectPropertyAddress&) const = default;
};

/// The code made of the four characters of `text`.
constexpr std::uint32_t fourCharacterCode(const char (&text)[5]) {
  std::uint32_t code = 0;
  for (int i = 0; i < 4; ++i)
    code = code << 8 | static_cast<std::uint32_t>(static_cast<unsigned char>(text[i]));
  return code;
}

/// The object that stands for the audio system itself.
inline constexpr AudioObjectID audioSystemObject = 1;

namespace audioAddress {
/// On the system object: the ID of the device that sound goes to, an unsigned integer.
inline constexpr AudioObjectPropertyAddress defaultOutputDevice{fourCharacterCode("dOut"),
                                                                fourCharacterCode("glob"), 0};
/// On a device: its volume, a float from 0 to 1 (the full level without amplification). It reads
/// above 1 while another program amplifies. Writing 1 then changes nothing, because whoever asks
/// for as much as there is does not want less; the default device's listeners are told instead.
inline constexpr AudioObjectPropertyAddress volume{fourCharacterCode("volm"),
                                                   fourCharacterCode("outp"), 0};
/// On a device: unsigned integer, not 0 when muted.
inline constexpr AudioObjectPropertyAddress mute{fourCharacterCode("mute"),
                                                 fourCharacterCode("outp"), 0};
}  // namespace audioAddress

/// 0 is success, anything else a failure that changed nothing.
using AudioStatus = std::int32_t;

/// The audio devices as objects with properties. Main thread only; no call waits for a sound
/// server.
///
/// Reads answer from the latest state that is known. A write is a request: it takes effect later or
/// not at all, and the listeners, not the write's status, tell what became of it. Listeners are
/// called on the main thread after a property may have changed; one change may give one call or
/// several, several quick changes may give one, and a call may find nothing changed. Device IDs are
/// never used again for another device. The default device and each device may go away at any time;
/// then its properties fail to read.
class AudioHardware {
 public:
  virtual ~AudioHardware() = default;

  [[nodiscard]] virtual AudioStatus getPropertyData(AudioObjectID object,
                                                    const AudioObjectPropertyAddress& address,
                                                    std::uint32_t& value) const = 0;
  [[nodiscard]] virtual AudioStatus getPropertyData(AudioObjectID object,
                                                    const AudioObjectPropertyAddress& address,
                                                    float& value) const = 0;
  virtual AudioStatus setPropertyData(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address,
                                      std::uint32_t value) = 0;
  virtual AudioStatus setPropertyData(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address, float value) = 0;

  /// Calls `block` after changes of a property until the token ends. Registering works for any
  /// object, also one that is not there any more.
  [[nodiscard]] virtual Token addPropertyListenerBlock(AudioObjectID object,
                                                       const AudioObjectPropertyAddress& address,
                                                       std::function<void()> block) = 0;
};

}  // namespace valdrix::platform
