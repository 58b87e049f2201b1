#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/calendar/CalendarSource.h"
#include "desktop/vdir/VdirPaths.h"

namespace valdrix::desktop {

/// A folder that may hold a calendar, now or later, or a single file in it.
struct CalendarFolder {
  std::filesystem::path path;
  std::string file;  ///< the only file that counts; empty for all
  std::filesystem::path root;
  std::uint64_t device = 0;
  std::uint64_t inode = 0;

  /// Whether both are the same on disk, under whatever path.
  [[nodiscard]] bool isSameAs(const CalendarFolder& other) const {
    return device == other.device && inode == other.inode && file == other.file;
  }
};

/// Whether a file of this name holds events: its extension is .ics and it is not hidden.
[[nodiscard]] bool isEventFileName(std::string_view name);
/// Whether a file of this name says how its folder's calendar looks.
[[nodiscard]] bool isMetadataFileName(std::string_view name);

/// Called with each existing folder in which a new entry called `name`, or any new entry when
/// `name` is empty, may change what is found; before the folder is looked into.
using FolderWatcher =
    std::function<void(const std::filesystem::path& folder, const std::string& name)>;

/// What a search tells of its ways.
struct SearchHooks {
  FolderWatcher watch = [](const auto&, const auto&) {};
  /// Called before each look at a path; what it answers false to is left out, with all in it.
  std::function<bool(const std::filesystem::path& path)> mayLook = [](const auto&) { return true; };
};

/// The folders at all places, in the order of `paths`, each once. Reads configurations and folders.
[[nodiscard]] std::vector<CalendarFolder> findCalendarFolders(const VdirPaths& paths,
                                                              SearchHooks hooks = {});

/// What the permissions at all places let this process do with the calendars there. Quick, and
/// never waits for another machine: where that would take too long, a calendar counts as readable.
/// A folder that is closed to this process counts when it was named itself, or lies in one of the
/// places that are there for calendars alone.
[[nodiscard]] CalendarSource::Reach reachOf(const VdirPaths& paths);

}  // namespace valdrix::desktop
