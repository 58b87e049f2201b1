#include "desktop/session/XdgLoginItem.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <system_error>

#include "desktop/session/AutostartEntry.h"
#include "desktop/session/WholeFile.h"

namespace valdrix::desktop {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t largestFile = std::size_t{1} << 20;

QStringList currentDesktops() {
  return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':', Qt::SkipEmptyParts);
}

FileContent contentOf(const fs::path& file) { return readWholeFile(file, largestFile); }

/// Whether nobody else has a part in it; what a link leads to is the user's.
bool isOwn(const AutostartEntry& entry, const fs::path& file) {
  std::error_code error;
  return entry.isOwn() && !fs::is_symlink(file, error);
}

bool isThere(const fs::path& file) {
  return contentOf(file).status != FileContent::Status::missing;
}

}  // namespace

XdgLoginItem::XdgLoginItem(QString program) : program_(std::move(program)) {
  for (const auto& folder :
       QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation))
    files_.push_back(fs::path(QFile::encodeName(folder).toStdString()) / "autostart" /
                     "valdrix.desktop");
}

QString XdgLoginItem::installedProgram() {
  const QDir folder(QCoreApplication::applicationDirPath());
  // The agent and the program that becomes it: side by side where they were built, in two folders
  // where they are installed.
  auto program = QCoreApplication::applicationFilePath();
  for (const auto* place : {"valdrix", VALDRIX_PROGRAM_FOLDER "/valdrix"})
    if (const QFileInfo file(folder.filePath(place)); file.isFile() && file.isExecutable()) {
      program = QDir::cleanPath(file.absoluteFilePath());
      break;
    }
  const auto found = QStandardPaths::findExecutable("valdrix");
  const bool isSame =
      QFileInfo(found).canonicalFilePath() == QFileInfo(program).canonicalFilePath();
  return isSame ? found : program;
}

platform::LoginItem::Status XdgLoginItem::statusOf(const Path& file) {
  const auto content = contentOf(file);
  if (content.status == FileContent::Status::missing) return Status::notRegistered;
  const AutostartEntry entry(content.bytes);
  if (entry.isHeldBack(currentDesktops())) return Status::requiresApproval;
  return entry.isUsable() ? Status::enabled : Status::notFound;
}

platform::LoginItem::Status XdgLoginItem::status() const {
  const auto first = std::ranges::find_if(files_, isThere);
  return first == files_.end() ? Status::notRegistered : statusOf(*first);
}

std::optional<fs::path> XdgLoginItem::packaged() const {
  const auto found = std::find_if(files_.begin() + 1, files_.end(), isThere);
  return found == files_.end() ? std::nullopt : std::optional(*found);
}

bool XdgLoginItem::registerAtLogin() {
  const auto content = contentOf(files_.front());
  const bool isMissing = content.status == FileContent::Status::missing;
  if (!isMissing && content.status != FileContent::Status::read) return false;
  AutostartEntry entry(content.bytes);
  if (isMissing || isOwn(entry, files_.front())) {
    const auto fallback = packaged();
    if (fallback && statusOf(*fallback) == Status::enabled) return isMissing || remove();
    return write(AutostartEntry::starting(program_).text());
  }
  entry.release(currentDesktops());
  if (!entry.isUsable()) entry.setProgram(program_);
  return write(entry.text()) && status() == Status::enabled;
}

bool XdgLoginItem::unregisterAtLogin() {
  const auto content = contentOf(files_.front());
  const bool isMissing = content.status == FileContent::Status::missing;
  if (!isMissing && content.status != FileContent::Status::read) return false;
  AutostartEntry entry(content.bytes);
  if (isMissing || isOwn(entry, files_.front())) {
    if (!packaged()) return isMissing || remove();
    entry = AutostartEntry::starting(program_);
  }
  entry.holdBack();
  return write(entry.text());
}

bool XdgLoginItem::write(std::string_view text) const {
  std::error_code error;
  fs::create_directories(files_.front().parent_path(), error);
  return writeWholeFile(files_.front(), text);
}

bool XdgLoginItem::remove() const {
  std::error_code error;
  return fs::remove(files_.front(), error);
}

}  // namespace valdrix::desktop
