#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "desktop/session/IniUserDefaults.h"
#include "observation/Token.h"

namespace valdrix::desktop {

/// What the user has allowed and refused, kept apart from the preferences: an INI file whose
/// `calendars` says `allowed` or `refused`; anything else counts as never asked. `toldKeyLosses`
/// keeps what was told of missing keys. Written, watched and, when damaged, set aside as the
/// preferences are; other keys stay. An answer that cannot be written holds for this run.
class PrivacyRecord {
 public:
  enum class Answer { none, allowed, refused };

  /// `file` need not exist, nor its folder.
  explicit PrivacyRecord(std::filesystem::path file = standardFile()) : file_(std::move(file)) {}
  /// Where the user's record is: `valdrix/privacy.conf` in the folder for programs' state.
  [[nodiscard]] static std::filesystem::path standardFile();

  /// As the file says now.
  [[nodiscard]] Answer calendars() const;
  /// `answer` is a given one.
  void setCalendars(Answer answer);

  /// The losses of keys that the user has been told of, in words divided by blanks.
  [[nodiscard]] std::string toldKeyLosses() const;
  void setToldKeyLosses(const std::string& losses);

  /// Calls `block` as the preferences do when a change could not be written.
  void setOnFailure(std::function<void()> block) { file_.setOnFailure(std::move(block)); }
  /// Calls `block` at a later turn of the loop after the record changed, whoever changed it.
  [[nodiscard]] Token observeChanges(std::function<void()> block) {
    return file_.observeChanges(std::move(block));
  }

 private:
  IniUserDefaults file_;
};

}  // namespace valdrix::desktop
