#include "desktop/session/IniUserDefaults.h"

#include <utility>

#include <QFile>
#include <QStandardPaths>
#include <system_error>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t maximumSize = std::size_t{64} << 20;

// The folder is made right away because a watch on it is cheaper than one on its parent, where
// other programs' files come and go.
fs::path withFolder(fs::path file) {
  std::error_code error;
  if (fs::create_directories(file.parent_path(), error))
    fs::permissions(file.parent_path(), fs::perms::owner_all, error);
  return file;
}

fs::path freeNameBeside(const fs::path& file) {
  std::error_code error;
  for (int number = 1;; ++number) {
    auto name = file;
    name += ".broken-" + std::to_string(number);
    if (!fs::exists(fs::symlink_status(name, error))) return name;
  }
}

}  // namespace

IniUserDefaults::IniUserDefaults(fs::path file)
    : file_(withFolder(std::move(file))), watch_(file_, [this] { replaceSnapshot(load()); }) {
  removeAbandonedWrites(file_);
  snapshot_ = load();
  if (snapshot_.isDamaged) save();
}

fs::path IniUserDefaults::standardFile() {
  const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return fs::path(QFile::encodeName(folder).toStdString()) / "valdrix" / "valdrix.conf";
}

IniUserDefaults::Snapshot IniUserDefaults::load() const {
  // Taken first: a change during the read then shows as one afterwards.
  Snapshot snapshot{stampOf(file_), FileContent::Status::missing, false, {}};
  auto content = readWholeFile(file_, maximumSize);
  snapshot.status = content.status;
  const bool isText = content.bytes.find('\0') == std::string::npos;
  if (isText) snapshot.document = IniDocument(content.bytes);
  snapshot.isDamaged = content.status == FileContent::Status::tooLarge || !isText ||
                       snapshot.document.hasUnreadableLines();
  return snapshot;
}

const IniUserDefaults::Snapshot& IniUserDefaults::current() const {
  if (stampOf(file_) != snapshot_.stamp) replaceSnapshot(load());
  return snapshot_;
}

void IniUserDefaults::replaceSnapshot(Snapshot snapshot) const {
  const bool isNews = snapshot.document.values() != snapshot_.document.values();
  snapshot_ = std::move(snapshot);
  if (isNews) scheduleNotice();
}

std::optional<std::string_view> IniUserDefaults::storedText(std::string_view key) const {
  if (const auto value = unsaved_.find(key); value != unsaved_.end()) return value->second;
  const auto& values = current().document.values();
  const auto value = values.find(key);
  if (value == values.end()) return std::nullopt;
  return value->second;
}

void IniUserDefaults::set(std::string_view key, Value value) {
  auto text = textOf(value);
  if (const auto stored = storedText(key); stored == text && unsaved_.empty()) return;
  unsaved_.insert_or_assign(std::string(key), std::move(text));
  scheduleNotice();
  save();
}

void IniUserDefaults::save() {
  if (current().status == FileContent::Status::unreadable) return;
  if (snapshot_.isDamaged && !setAside()) return;
  auto document = snapshot_.document;
  document.removeUnreadableLines();
  auto stillUnsaved = unsaved_;
  for (const auto& [key, value] : unsaved_) {
    if (!IniDocument::isKey(key)) continue;
    document.set(key, value);
    stillUnsaved.erase(key);
  }
  const auto text = document.text();
  if (text.empty() || text.size() > maximumSize) return;
  if (!writeWholeFile(file_, text)) return;
  unsaved_ = std::move(stillUnsaved);
  snapshot_ = {stampOf(file_), FileContent::Status::read, false, std::move(document)};
}

bool IniUserDefaults::setAside() {
  const auto target = followLinks(file_);
  std::error_code error;
  fs::rename(target, freeNameBeside(target), error);
  return !error;
}

Token IniUserDefaults::observeChanges(std::function<void()> block) {
  const auto id = nextObserver_++;
  observers_->emplace(id, std::move(block));
  return Token([id, observers = std::weak_ptr(observers_)] {
    if (const auto held = observers.lock()) held->erase(id);
  });
}

void IniUserDefaults::scheduleNotice() const {
  if (std::exchange(isNoticeScheduled_, true)) return;
  QMetaObject::invokeMethod(
      &turn_, [this] { notifyObservers(); }, Qt::QueuedConnection);
}

void IniUserDefaults::notifyObservers() const {
  isNoticeScheduled_ = false;
  // An observer may end any registration, its own included, so each is looked up again.
  const auto observers = *observers_;
  for (const auto& [id, block] : observers)
    if (observers_->contains(id)) block();
}

}  // namespace valdrix::desktop
