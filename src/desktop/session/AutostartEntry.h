#pragma once

#include <string>
#include <string_view>

#include <QStringList>

#include "desktop/session/IniDocument.h"

namespace valdrix::desktop {

/// The text of an entry in an autostart folder: a desktop entry that may be held back by one of
/// several keys. Changes touch single lines; comments, foreign keys, translations and other groups
/// stay as they are.
class AutostartEntry {
 public:
  explicit AutostartEntry(std::string_view text);
  /// One that starts `program` on every desktop.
  [[nodiscard]] static AutostartEntry starting(const QString& program);

  [[nodiscard]] std::string text() const { return document_.text(); }
  /// Whether the entry could have been made here: nobody else has added anything.
  [[nodiscard]] bool isOwn() const;
  /// Whether it names a program that is there.
  [[nodiscard]] bool isUsable() const;
  /// Whether it is switched off, for all desktops or for those that are running.
  [[nodiscard]] bool isHeldBack(const QStringList& desktops) const;

  void holdBack();
  /// Undoes what holds it back, by whatever key.
  void release(const QStringList& desktops);
  void setProgram(const QString& program);

 private:
  [[nodiscard]] QString value(std::string_view key) const;
  [[nodiscard]] QStringList list(std::string_view key) const;
  [[nodiscard]] bool isShownIn(const QStringList& desktops) const;
  void set(std::string_view key, const QString& value);

  IniDocument document_;
};

}  // namespace valdrix::desktop
