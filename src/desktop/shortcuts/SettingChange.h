#pragma once

#include <set>
#include <string>
#include <vector>

#include "desktop/shortcuts/SettingStore.h"
#include "platform/MediaKey.h"

namespace valdrix::desktop {

/// What becomes of one setting of a desktop while keys are entrusted.
struct SettingChange {
  using Value = SettingStore::Value;
  enum class Kind {
    assign,     ///< it is `texts[0]`
    switchOff,  ///< a switch, or a number of one, that is off
    remove,     ///< a string, or a list of them, that has none of `texts`
    /// As `remove`, and it differs from before in any case: whoever watches the setting looks at
    /// what belongs to it anew.
    removeAndTouch,
    add,  ///< a list, in which others have a part, that has all of `texts`
  };

  std::string store;
  /// A pattern of its store, or a name.
  std::string setting;
  Kind kind;
  std::vector<std::string> texts;
  /// The keys that it is about.
  std::set<platform::MediaKey> keys;
  /// Whether not every version of the desktop has it.
  bool isOptional = false;
  /// Whether nobody but this program has the setting: it is not set without the change.
  bool isOwn = false;

  /// What the setting is to be where it is `base` without the change; none when `base` is of no
  /// type that could be changed so.
  [[nodiscard]] std::optional<Value> applied(const Value& base) const;
  /// Whether `current` may come of the change.
  [[nodiscard]] bool isEvidentIn(const Value& current) const;
  /// What `current` was without it, as far as that can be told: none, the default, where it cannot.
  [[nodiscard]] Value undone(const Value& current) const;
};

/// `list` without the elements `removed`; `list` itself when it is no list.
[[nodiscard]] SettingStore::Value withoutElements(const SettingStore::Value& list,
                                                  const std::vector<std::string>& removed);

}  // namespace valdrix::desktop
