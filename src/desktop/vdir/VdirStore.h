#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <vector>

#include "desktop/vdir/DiskLooks.h"
#include "desktop/vdir/FolderWatches.h"
#include "desktop/vdir/VdirFolder.h"
#include "desktop/vdir/VdirHorizon.h"
#include "desktop/vdir/VdirIndex.h"
#include "desktop/vdir/VdirPaths.h"
#include "desktop/vdir/VdirSnapshot.h"

namespace valdrix::desktop {

/// Everything that is known of the folders of calendars, and what is still to be found out. Does
/// what it is told when it is told; when that is, is `VdirWorker`'s business. One thread only.
class VdirStore {
 public:
  /// Long work ends early when `looks` are stopped. `looks` outlives this.
  VdirStore(VdirPaths paths, DiskLooks& looks);

  /// Readable when `takeNotices` has something to take; -1 when the system gives no notices.
  [[nodiscard]] int noticesFd() const { return watches_.fd(); }
  /// Notes what changed on disk.
  void takeNotices();
  /// Whether changes go unnoticed, so that `lookAgain` must find them.
  [[nodiscard]] bool isBlind() const { return watches_.isIncomplete() || hasSkipped_; }
  /// Has everything compared with what is on disk.
  void lookAgain();

  /// Has what is missing for `horizon` read.
  void setHorizon(const VdirHorizon& horizon);

  [[nodiscard]] bool isSearchDue() const { return isSearchDue_; }
  /// Looks for folders that came or went.
  void search();

  [[nodiscard]] bool hasWork() const;
  /// Reads and looks through folders for about so long.
  void work(std::chrono::milliseconds duration);

  /// Whether there is something that the last snapshot did not have.
  [[nodiscard]] bool hasNews() const;
  [[nodiscard]] std::shared_ptr<const VdirSnapshot> takeSnapshot();

  /// Whether the next start would read files again that were read already.
  [[nodiscard]] bool isIndexOld() const { return isIndexOld_ && !hasWork(); }
  void saveIndex();

 private:
  struct Entry {
    VdirFolder folder;
    int watch = -1;  ///< since it was scanned last
    bool isScanDue = true;
    bool isAppearanceDue = true;
    bool wasCalendar = false;  ///< in the last snapshot
  };
  using Entries = std::vector<std::unique_ptr<Entry>>;

  void take(const FolderWatches::Event& event);
  void take(const FolderWatches::Event& event, Entry& entry);
  [[nodiscard]] std::unique_ptr<Entry> takeEntry(const CalendarFolder& where);
  bool workOnce();
  [[nodiscard]] bool isReading() const;
  void readNext(Entry& entry);

  VdirPaths paths_;
  DiskLooks& looks_;
  FolderWatches watches_;
  VdirHorizon horizon_;
  VdirIndex index_;  ///< of the folders that were not found yet
  platform::Instant since_{};
  Entries entries_;
  std::multimap<int, Entry*> entryOfWatch_;
  std::size_t readSinceTrim_ = 0;
  bool hasSkipped_ = false;  ///< whether the last search left silent places out
  bool isSearchDue_ = true;
  bool hasNews_ = false;
  bool isIndexOld_ = false;
};

}  // namespace valdrix::desktop
