#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include <QString>

#include "platform/LoginItem.h"

namespace valdrix::desktop {

/// The program as `valdrix.desktop` in the desktop's autostart folders: the user's own before those
/// that packages fill. The first folder with such a file decides, also when it cannot be read.
class XdgLoginItem final : public platform::LoginItem {
 public:
  /// `program` is what an entry written here starts.
  explicit XdgLoginItem(QString program = installedProgram());
  /// The program that people call, for the running agent: under the path by which others find it,
  /// which outlives its next version.
  [[nodiscard]] static QString installedProgram();

  /// An entry that names no program that is there counts as not found.
  [[nodiscard]] Status status() const override;
  /// Undoes what holds the user's own entry back and makes it start a program that is there; writes
  /// one where there is none, and no packaged one to rely on.
  bool registerAtLogin() override;
  /// Removes the user's own entry, or holds it back where others have written in it or a packaged
  /// one would take its place.
  bool unregisterAtLogin() override;

 private:
  using Path = std::filesystem::path;

  [[nodiscard]] static Status statusOf(const Path& file);
  /// The packaged entry that counts, if any.
  [[nodiscard]] std::optional<Path> packaged() const;
  [[nodiscard]] bool write(std::string_view text) const;
  [[nodiscard]] bool remove() const;

  QString program_;
  std::vector<Path> files_;  ///< where an entry may be, the user's own first
};

}  // namespace valdrix::desktop
