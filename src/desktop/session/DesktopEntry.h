#pragma once

#include <optional>

#include <QString>
#include <QStringList>

namespace valdrix::desktop {

/// The keys and values of one group of a key file, by freedesktop.org's rules for .desktop files
/// and mimeapps.list; empty when there is no such file. Of equal keys the first counts. Values are
/// as written.
class KeyFileGroup {
 public:
  KeyFileGroup(const QString& file, const QString& group);

  /// Empty when the key is missing.
  [[nodiscard]] QString value(const QString& key) const;
  /// A value that is a list, in its order.
  [[nodiscard]] QStringList list(const QString& key) const;

 private:
  QStringList lines_;
};

/// A program that a desktop entry (a .desktop file) describes.
class DesktopEntry {
 public:
  /// Whether a program can be started under that name or path.
  [[nodiscard]] static bool isInstalled(const QString& program);
  /// The program that an Exec value starts, its escapes being replaced already; may be empty.
  [[nodiscard]] static QString programOf(const QString& exec);
  /// The Exec value that starts `program` without arguments.
  [[nodiscard]] static QString execOf(const QString& program);

  /// Nothing when `file` describes no program, one that is not installed or hidden, or one that
  /// needs a terminal.
  [[nodiscard]] static std::optional<DesktopEntry> read(const QString& file);

  /// The argument vector that starts it without a file or link.
  [[nodiscard]] QStringList command() const;
  /// The argument vector that opens `url`; nothing when it takes none.
  [[nodiscard]] std::optional<QStringList> command(const QString& url) const;

 private:
  [[nodiscard]] QStringList expanded(const QString& url) const;

  QStringList words_;  ///< of Exec, without quotes, with field codes
  QString name_;
  QString file_;
};

}  // namespace valdrix::desktop
