#include "desktop/session/IniUserDefaults.h"

#include <utility>

#include <QFile>
#include <QStandardPaths>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

// The folder is made right away because a watch on it is cheaper than one on its parent, where
// other programs' files come and go.
fs::path withFolder(fs::path file) {
  makeFolderOf(file);
  return file;
}

}  // namespace

IniUserDefaults::IniUserDefaults(fs::path file)
    : file_(withFolder(std::move(file))),
      writer_(file_,
              [this] {
                QMetaObject::invokeMethod(
                    &turn_, [this] { look(); }, Qt::QueuedConnection);
              }),
      watch_(file_, [this] { look(); }) {
  removeAbandonedWrites(file_);
  found_ = IniFile::read(file_);
  if (found_.isDamaged) writer_.mend();
}

fs::path IniUserDefaults::standardFile() {
  const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return fs::path(QFile::encodeName(folder).toStdString()) / "valdrix" / "valdrix.conf";
}

void IniUserDefaults::look() const {
  const auto results = writer_.takeResults();
  if (results.empty() && stampOf(file_) == found_.stamp) return;
  const auto before = values();
  for (const auto& result : results) forget(result);
  if (stampOf(file_) != found_.stamp) found_ = IniFile::read(file_);
  if (values() != before) scheduleNotice();
}

void IniUserDefaults::forget(const IniWriter::Result& result) const {
  for (const auto& [key, value] : result.values)
    if (const auto entry = unsaved_.find(key);
        result.isSaved && entry != unsaved_.end() && entry->second == value)
      unsaved_.erase(entry);
  const bool isFailure = !result.isSaved && !result.values.empty();
  if (isFailure && !hasFailed_ && onFailure_)
    QMetaObject::invokeMethod(&turn_, onFailure_, Qt::QueuedConnection);
  hasFailed_ = isFailure;
}

IniDocument::Values IniUserDefaults::values() const {
  auto all = unsaved_;
  all.insert(found_.document.values().begin(), found_.document.values().end());
  return all;
}

std::optional<std::string_view> IniUserDefaults::storedText(std::string_view key) const {
  look();
  if (const auto value = unsaved_.find(key); value != unsaved_.end()) return value->second;
  const auto& values = found_.document.values();
  const auto value = values.find(key);
  if (value == values.end()) return std::nullopt;
  return value->second;
}

void IniUserDefaults::set(std::string_view key, Value value) {
  auto text = textOf(value);
  if (const auto stored = storedText(key); stored == text && unsaved_.empty()) return;
  if (IniDocument::isKey(key)) writer_.set(key, text);
  unsaved_.insert_or_assign(std::string(key), std::move(text));
  scheduleNotice();
}

bool IniUserDefaults::finishWrites(std::chrono::milliseconds patience) {
  const bool isFinished = writer_.finish(patience);
  look();
  return isFinished;
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
