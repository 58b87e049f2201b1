#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include <sys/inotify.h>

#include "desktop/session/UniqueFd.h"

namespace valdrix::desktop {

/// The system's notices of changes in many folders. One thread only; the caller waits for `fd`.
class FolderWatches {
 public:
  struct Event {
    int watch;              ///< as `add` named it; -1 when there is no saying in which folder
    std::uint32_t mask;     ///< as of inotify(7)
    std::string_view name;  ///< empty for the folder itself
    bool isByName;          ///< whether that entry was asked for by its name
    bool isOfAll;           ///< whether all entries of that folder were asked for
  };

  FolderWatches();

  /// Readable when there are events; -1 when the system has none to give.
  [[nodiscard]] int fd() const { return inotify_.get(); }
  /// Whether any folder could not be watched, so that its changes go unnoticed.
  [[nodiscard]] bool isIncomplete() const { return isIncomplete_; }

  /// Begins a new set of watches; those of the old one that are not added again end with
  /// `finishRound`.
  void beginRound();
  void finishRound();
  /// Watches a folder, or one entry of it called `name`, if not empty. What names the watch, the
  /// same for one folder under whatever path, or -1.
  int add(const std::filesystem::path& folder, const std::string& name);

  /// Takes events that are there, some thousand at most: whoever changes files without pause does
  /// not keep the caller, and `fd` stays readable.
  void read(const std::function<void(const Event&)>& use);

 private:
  struct Watch {
    std::set<std::string, std::less<>> names;
    bool isForAll = false;
    unsigned round = 0;
  };

  [[nodiscard]] Event describe(const inotify_event& event) const;

  UniqueFd inotify_;
  std::map<int, Watch> watches_;
  unsigned round_ = 0;
  bool isIncomplete_ = false;
};

}  // namespace valdrix::desktop
