#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/shortcuts/CustodyRecord.h"
#include "desktop/shortcuts/SettingChange.h"

namespace valdrix::desktop {

/// What is to be done next so that the settings of a desktop are as they are wanted, from how they
/// stand and what is known of how they stood.
struct CustodyPlan {
  using Value = SettingStore::Value;
  /// A setting by its store and its name.
  using Setting = std::pair<std::string, std::string>;
  /// What each setting was read as; none for one that could not be read.
  using Readings = std::map<Setting, std::optional<Value>>;
  struct Write {
    Setting setting;
    Value value;
    bool operator==(const Write&) const = default;
  };

  /// To be recorded before the first write: settings that are as they were have left it.
  std::vector<CustodyRecord::Entry> entries;
  /// In this order. Where there are none, everything is as wanted but for `unreadable`.
  std::vector<Write> writes;
  /// What could not be read and would have to be, or is of a type that cannot be changed.
  std::vector<Setting> unreadable;
  /// The keys of `changes` that are not yet as wanted.
  std::set<platform::MediaKey> open;

  /// `changes` are those that are wanted on `desktop`, with names for settings. An entry without a
  /// change is given back: a setting that still has the value written gets the one before, one that
  /// the user has changed since is left alone.
  [[nodiscard]] static CustodyPlan make(const std::string& desktop,
                                        const std::vector<CustodyRecord::Entry>& entries,
                                        const std::vector<SettingChange>& changes,
                                        const Readings& readings);

  /// Entries for what `changes` seem to have made where no record says so, if all that one key
  /// takes seems to have been made: how it may have stood, or the desktop's default.
  [[nodiscard]] static std::vector<CustodyRecord::Entry> evidence(
      const std::string& desktop, const std::vector<SettingChange>& changes,
      const Readings& readings);
};

}  // namespace valdrix::desktop
