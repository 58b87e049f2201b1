#pragma once

#include <optional>

#include <QString>

#include "desktop/session/DesktopEntry.h"

namespace valdrix::desktop {

/// A program of the desktop under the name of its desktop entry, such as "org.gnome.Calendar".
struct DesktopApplication {
  QString name;
  DesktopEntry entry;
};

/// The program that the user, the desktop or the distribution has chosen for a MIME type or, as
/// "x-scheme-handler/https", for a kind of links (by freedesktop.org's rules for
/// mimeapps.list). Reads a few files.
[[nodiscard]] std::optional<DesktopApplication> defaultApplication(const QString& mimeType);
/// The first program that can open a MIME type, chosen or not.
[[nodiscard]] std::optional<DesktopApplication> anyApplication(const QString& mimeType);
/// The program whose desktop entry has this name, when it is installed.
[[nodiscard]] std::optional<DesktopApplication> applicationNamed(const QString& name);

}  // namespace valdrix::desktop
