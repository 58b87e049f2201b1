#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "desktop/keys/KeySource.h"
#include "platform/MediaKey.h"

namespace valdrix::desktop {

/// Who has the media keys: all that the user is told of them, in every place.
struct KeyAccount {
  struct Entry {
    platform::MediaKey key{};
    /// Whether the program would act on it, as the preferences and the levels are.
    bool isWanted = false;
    KeyState state = KeyState::released;
    /// The name of the source that has it or would have it.
    std::string source;
    bool operator==(const Entry&) const = default;
  };
  /// All keys, in the order of `platform::mediaKeys`.
  std::vector<Entry> keys;
  bool operator==(const KeyAccount&) const = default;

  /// Whether every key that is wanted arrives. A key that is on no keyboard is missed by nobody.
  [[nodiscard]] bool isComplete() const {
    return std::ranges::all_of(keys, [](const Entry& entry) { return !isMissing(entry); });
  }
  [[nodiscard]] static bool isMissing(const Entry& entry) {
    return entry.isWanted && entry.state != KeyState::held && entry.state != KeyState::absent;
  }
};

}  // namespace valdrix::desktop
