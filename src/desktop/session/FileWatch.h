#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include <QSocketNotifier>

#include "desktop/session/UniqueFd.h"

namespace valdrix::desktop {

/// Tells when a file was written, replaced, created or removed by anybody. Follows symbolic links
/// to their target, and outlives the removal of any folder on the way: then it waits for that
/// folder. Watches folders, not the file, because replacing a file ends a watch on it. Where the
/// system refuses watches it stays silent. Needs an event loop on its thread.
class FileWatch {
 public:
  /// `onChange` is called after changes, perhaps once for several, perhaps without one.
  FileWatch(std::filesystem::path file, std::function<void()> onChange);

 private:
  void arm();
  void watch(const std::filesystem::path& file, int depth);
  void readEvents();

  std::filesystem::path file_;
  std::function<void()> onChange_;
  UniqueFd inotify_;
  std::multimap<int, std::string> names_;  ///< what is of interest in each watched folder
  QSocketNotifier notifier_;
};

}  // namespace valdrix::desktop
