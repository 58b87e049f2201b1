#include "desktop/vdir/VdirStore.h"

#include <algorithm>
#include <filesystem>
#include <malloc.h>
#include <utility>

#include <sys/inotify.h>
#include <system_error>

#include "desktop/vdir/VdirCalendars.h"

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

std::string indexKey(const CalendarFolder& folder) { return (folder.path / folder.file).string(); }

bool isFolderLink(const fs::path& path) {
  std::error_code error;
  return fs::is_symlink(path, error) && fs::is_directory(path, error);
}

}  // namespace

VdirStore::VdirStore(VdirPaths paths, DiskLooks& looks)
    : paths_(std::move(paths)), looks_(looks), index_(VdirIndex::load(paths_.index)) {
  since_ = index_.since;
  for (const auto& [path, files] : index_.folders) readSinceTrim_ += files.size();
}

void VdirStore::setHorizon(const VdirHorizon& horizon) {
  const bool isUsable = horizon.isCoveredFrom(since_);
  // Of more occurrences than a snapshot holds, others are nearest.
  hasNews_ |= !entries_.empty() && horizon.today != horizon_.today;
  horizon_ = horizon;
  if (!isUsable) index_ = {};
  since_ = isUsable ? std::max(since_, horizon.since()) : horizon.since();
  for (const auto& entry : entries_)
    if (isUsable) {
      entry->folder.queueFor(horizon);
    } else {
      entry->folder.queueAll();
    }
}

void VdirStore::takeNotices() {
  watches_.read([this](const FolderWatches::Event& event) { take(event); });
}

void VdirStore::take(const FolderWatches::Event& event) {
  if (event.mask & IN_Q_OVERFLOW) return lookAgain();
  // That a watch ended follows what ended it, or a search that had no more use for it.
  if (event.watch < 0 || event.mask & IN_IGNORED) return;
  const auto [first, last] = entryOfWatch_.equal_range(event.watch);
  // A pattern may match any name in a folder that is not a calendar's.
  const bool isCandidate = event.mask & IN_ISDIR || first == last;
  if (event.isByName || event.name.empty() ||
      (event.isOfAll && isCandidate && !event.name.starts_with('.')))
    isSearchDue_ = true;
  for (auto entry = first; entry != last; ++entry) {
    looks_.begin(entry->second->folder.where().path);
    take(event, *entry->second);
  }
  looks_.end();
}

void VdirStore::take(const FolderWatches::Event& event, Entry& entry) {
  const auto& where = entry.folder.where();
  // The folder's own permissions may be others now.
  if (event.name.empty()) entry.isScanDue = entry.isAppearanceDue = true;
  if (isMetadataFileName(event.name)) entry.isAppearanceDue = true;
  if (event.name.empty() || event.mask & IN_ISDIR) return;
  const auto path = where.path / event.name;
  std::error_code error;
  if (!entry.folder.holds(event.name)) {
    const bool wasFolder = std::ranges::any_of(
        entries_, [&](const auto& other) { return other->folder.where().path == path; });
    const bool isFolder = event.mask & (IN_CREATE | IN_MOVED_TO) && isFolderLink(path);
    if (wasFolder || isFolder) isSearchDue_ = true;
    return;
  }
  // Whoever creates a file is still to write it, unless it is another name of one that exists, or
  // was written before it had a name, as Qt's programs do.
  const bool isEmptyYet = event.mask & IN_CREATE && !fs::is_symlink(path, error) &&
                          fs::hard_link_count(path, error) == 1 && fs::file_size(path, error) == 0;
  if (!isEmptyYet) entry.folder.queue(event.name);
}

void VdirStore::lookAgain() {
  isSearchDue_ = true;
  for (const auto& entry : entries_) entry->isScanDue = entry->isAppearanceDue = true;
}

void VdirStore::search() {
  isSearchDue_ = false;
  watches_.beginRound();
  hasSkipped_ = false;
  SearchHooks hooks;
  hooks.watch = [this](const fs::path& folder, const std::string& name) {
    static_cast<void>(watches_.add(folder, name));
  };
  hooks.mayLook = [this](const fs::path& path) {
    const bool mayLook = looks_.begin(path);
    hasSkipped_ |= !mayLook;
    return mayLook && !looks_.isStopped();
  };
  Entries entries;
  entryOfWatch_.clear();
  for (const auto& where : findCalendarFolders(paths_, hooks)) {
    auto& entry = *entries.emplace_back(takeEntry(where));
    const int id = watches_.add(where.path, where.file);
    entryOfWatch_.emplace(id, &entry);
    // A folder that was made anew may have its predecessor's inode; what came into it before it
    // was watched went unnoticed.
    if (std::exchange(entry.watch, id) != id) entry.isScanDue = entry.isAppearanceDue = true;
  }
  looks_.end();
  // What is left was not found again.
  hasNews_ |= std::ranges::any_of(entries_, [](const auto& entry) { return entry != nullptr; });
  entries_ = std::move(entries);
  watches_.finishRound();
}

std::unique_ptr<VdirStore::Entry> VdirStore::takeEntry(const CalendarFolder& where) {
  const auto known = std::ranges::find_if(entries_, [&](const auto& entry) {
    return entry != nullptr && entry->folder.where().isSameAs(where);
  });
  if (known != entries_.end()) {
    hasNews_ |= (*known)->folder.where().path != where.path;
    (*known)->folder.setWhere(where);
    return std::move(*known);
  }
  auto files = std::move(index_.folders[indexKey(where)]);
  index_.folders.erase(indexKey(where));
  auto entry = std::make_unique<Entry>(Entry{VdirFolder(where, std::move(files))});
  entry->folder.queueFor(horizon_);
  isIndexOld_ = true;
  return entry;
}

bool VdirStore::isReading() const {
  return std::ranges::any_of(entries_, [](const auto& entry) { return entry->folder.hasQueue(); });
}

bool VdirStore::hasWork() const {
  return isReading() || std::ranges::any_of(entries_, [](const auto& entry) {
           return entry->isScanDue || entry->isAppearanceDue;
         });
}

void VdirStore::work(std::chrono::milliseconds duration) {
  const auto end = std::chrono::steady_clock::now() + duration;
  while (!looks_.isStopped() && std::chrono::steady_clock::now() < end) {
    const bool wasReading = isReading();
    if (!workOnce()) break;
    // The list of what the index knew is not kept waiting until all folders are looked through.
    if (wasReading && !isReading() && hasNews()) break;
  }
  // What thousands of files, or the index of them, took goes back to the system.
  constexpr std::size_t many = 1000;
  if (readSinceTrim_ >= many && !hasWork()) {
    readSinceTrim_ = 0;
    ::malloc_trim(0);
  }
}

bool VdirStore::workOnce() {
  // What can be shown soon goes before what is only to be looked through.
  bool hasRead = false;
  for (const auto& entry : entries_) {
    if (std::exchange(entry->isAppearanceDue, false))
      hasNews_ |= entry->folder.readAppearance(looks_);
    if (!entry->folder.hasQueue()) continue;
    hasRead = true;
    readNext(*entry);
  }
  if (hasRead) return true;
  const auto unscanned = std::ranges::find_if(entries_, [](const auto& e) { return e->isScanDue; });
  if (unscanned == entries_.end()) return false;
  (*unscanned)->isScanDue = false;
  (*unscanned)->folder.scan(looks_);
  return true;
}

void VdirStore::readNext(Entry& entry) {
  hasNews_ |= entry.folder.readNext(horizon_, looks_);
  isIndexOld_ = true;
  ++readSinceTrim_;
}

bool VdirStore::hasNews() const {
  return hasNews_ || std::ranges::any_of(entries_, [](const auto& entry) {
           return entry->wasCalendar != entry->folder.isCalendar();
         });
}

std::shared_ptr<const VdirSnapshot> VdirStore::takeSnapshot() {
  hasNews_ = false;
  VdirCalendars calendars(paths_.environment);
  for (const auto& entry : entries_) {
    entry->wasCalendar = entry->folder.isCalendar();
    calendars.add(entry->folder);
  }
  return std::make_shared<const VdirSnapshot>(std::move(calendars).snapshot(horizon_.today));
}

void VdirStore::saveIndex() {
  isIndexOld_ = false;
  if (paths_.index.empty()) return;
  {
    VdirIndexWriter index(since_);
    for (const auto& entry : entries_)
      index.add(indexKey(entry->folder.where()), entry->folder.files());
    static_cast<void>(std::move(index).save(paths_.index));
  }
  // The text of a large index was larger than all that stays.
  ::malloc_trim(0);
}

}  // namespace valdrix::desktop
