#include "desktop/workspace/DesktopApplications.h"

#include <utility>

#include <QFile>
#include <QStandardPaths>
#include <QStringList>

namespace valdrix::desktop {

namespace {

const QString suffix = QStringLiteral(".desktop");

QStringList folders(QStandardPaths::StandardLocation location, const QString& below) {
  QStringList folders;
  for (const auto& folder : QStandardPaths::standardLocations(location))
    folders.append(folder + below);
  return folders;
}

/// The lists of defaults and associations, those that count more first.
QStringList associationLists() {
  QStringList names;
  for (const auto& desktop :
       qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':', Qt::SkipEmptyParts))
    names.append(desktop.toLower() + "-mimeapps.list");
  names.append("mimeapps.list");
  QStringList files;
  for (const auto& folder : folders(QStandardPaths::GenericConfigLocation, "/") +
                                folders(QStandardPaths::GenericDataLocation, "/applications/"))
    for (const auto& name : std::as_const(names)) files.append(folder + name);
  return files;
}

std::optional<DesktopApplication> firstInstalled(const QStringList& identifiers) {
  for (auto name : identifiers) {
    if (name.endsWith(suffix)) name.chop(suffix.size());
    if (auto application = applicationNamed(name)) return application;
  }
  return std::nullopt;
}

}  // namespace

std::optional<DesktopApplication> applicationNamed(const QString& name) {
  if (name.contains('/')) return std::nullopt;
  for (const auto& folder : folders(QStandardPaths::GenericDataLocation, "/applications/")) {
    // An entry in a sub-folder has the folder's name and a dash before its own.
    for (QString path = name; !path.isEmpty();) {
      if (QFile::exists(folder + path + suffix)) {
        auto entry = DesktopEntry::read(folder + path + suffix);
        if (!entry) return std::nullopt;
        return DesktopApplication{name, *std::move(entry)};
      }
      const auto dash = path.indexOf('-');
      if (dash < 0) break;
      path[dash] = '/';
    }
  }
  return std::nullopt;
}

std::optional<DesktopApplication> defaultApplication(const QString& mimeType) {
  for (const auto& file : associationLists()) {
    const KeyFileGroup defaults(file, "Default Applications");
    if (auto application = firstInstalled(defaults.list(mimeType))) return application;
  }
  return std::nullopt;
}

std::optional<DesktopApplication> anyApplication(const QString& mimeType) {
  if (auto chosen = defaultApplication(mimeType)) return chosen;
  QStringList removed;
  QStringList candidates;
  const auto addAll = [&](const QStringList& names) {
    for (const auto& name : names)
      if (!removed.contains(name)) candidates.append(name);
  };
  for (const auto& file : associationLists()) {
    addAll(KeyFileGroup(file, "Added Associations").list(mimeType));
    removed += KeyFileGroup(file, "Removed Associations").list(mimeType);
  }
  for (const auto& folder : folders(QStandardPaths::GenericDataLocation, "/applications/"))
    addAll(KeyFileGroup(folder + "mimeinfo.cache", "MIME Cache").list(mimeType));
  return firstInstalled(candidates);
}

}  // namespace valdrix::desktop
