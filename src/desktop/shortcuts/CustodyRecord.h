#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "desktop/shortcuts/SettingStore.h"

namespace valdrix::desktop {

/// What the user has said about the desktop's keys, and how each setting stood that was changed for
/// it: a JSON file, written whole before the first change, so that whatever happens afterwards can
/// be undone.
class CustodyRecord {
 public:
  using Value = SettingStore::Value;
  struct Entry {
    std::string desktop;
    std::string store;
    std::string setting;
    Value before;
    Value written;
    /// What was added to a list in which others have a part; empty for all other settings.
    std::vector<std::string> added;
    bool operator==(const Entry&) const = default;
  };
  struct Content {
    /// The desktops whose keys the user has entrusted.
    std::set<std::string> consents;
    /// In the order in which they were changed.
    std::vector<Entry> entries;
    bool operator==(const Content&) const = default;
    [[nodiscard]] bool isEmpty() const { return consents.empty() && entries.empty(); }
  };
  enum class Status {
    read,
    missing,
    unreadable,  ///< no permission, or of a newer version; to be left alone
    broken,      ///< no text of this kind
  };

  /// `file` need not exist, nor its folder.
  explicit CustodyRecord(std::filesystem::path file = standardFile());
  /// Where the user's record is: `valdrix/desktop-keys.json` in the folder for configurations.
  [[nodiscard]] static std::filesystem::path standardFile();

  [[nodiscard]] Status status() const { return status_; }
  /// As the file says.
  [[nodiscard]] const Content& content() const { return content_; }
  /// Whether the file says so now. A broken one is renamed to `<name>.broken-<number>` first; one
  /// that would say nothing is removed.
  [[nodiscard]] bool save(const Content& content);

 private:
  [[nodiscard]] bool setAside() const;

  std::filesystem::path file_;
  Status status_ = Status::missing;
  Content content_;
};

}  // namespace valdrix::desktop
