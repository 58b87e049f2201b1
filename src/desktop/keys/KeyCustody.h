#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "observation/Token.h"
#include "platform/MediaKey.h"

namespace valdrix::desktop {

/// A desktop's own hold on the media keys: its settings can be changed so that the keys come to
/// this program, which happens with the user's consent and is undone on request. Main thread only;
/// never waits.
class KeyCustody {
 public:
  enum class Place {
    desktop,     ///< the desktop has it, and can be asked to leave it
    entrusted,   ///< its settings leave it to this program
    impossible,  ///< no setting makes the desktop leave it
  };
  struct State {
    /// Whether the user wants the keys entrusted. Outlives the process.
    bool isEntrusted = false;
    /// Whether a change is under way, or about to be.
    bool isBusy = false;
    /// Whether something that is wanted did not work. It is tried again from time to time.
    bool hasFailed = false;
    /// Of the keys that this desktop is known to have; empty where nothing can be handed over.
    std::map<platform::MediaKey, Place> places;
    /// What did not work, or cannot, and what helps, for the user; may be empty.
    std::string note;
    bool operator==(const State&) const = default;

    /// Whether the desktop leaves the key, with the user's consent.
    [[nodiscard]] bool leaves(platform::MediaKey key) const {
      const auto place = places.find(key);
      return isEntrusted && place != places.end() && place->second == Place::entrusted;
    }
    /// Whether the desktop has the key, or will want it back.
    [[nodiscard]] bool reserves(platform::MediaKey key) const {
      const auto place = places.find(key);
      return place != places.end() && place->second != Place::impossible && !leaves(key);
    }
  };

  virtual ~KeyCustody() = default;

  /// As far as is known now; empty at first.
  [[nodiscard]] virtual State state() const = 0;
  /// The user's answer: hands the wanted keys over, or gives all back as they were.
  virtual void entrust() = 0;
  virtual void restore() = 0;
  /// The keys that the program would act on. Those that it would not are the desktop's also while
  /// keys are entrusted.
  virtual void setWanted(const std::set<platform::MediaKey>& keys) = 0;
  /// Calls `block` after the state has changed.
  [[nodiscard]] virtual Token observe(std::function<void()> block) = 0;
};

}  // namespace valdrix::desktop
