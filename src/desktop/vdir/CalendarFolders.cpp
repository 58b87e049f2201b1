#include "desktop/vdir/CalendarFolders.h"

#include <algorithm>
#include <cctype>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <memory>
#include <optional>
#include <span>
#include <unistd.h>

#include <sys/stat.h>

#include "desktop/session/WholeFile.h"
#include "desktop/vdir/CalendarPlaces.h"

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

using Reach = CalendarSource::Reach;

constexpr std::size_t maximumConfigurationSize = std::size_t{1} << 20U;

std::optional<struct stat> statusOf(const fs::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return status;
}

bool isFolder(const fs::path& path) {
  const auto status = statusOf(path);
  return status && S_ISDIR(status->st_mode);
}

bool isAccessible(const fs::path& path, int mode) {
  return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

bool isLink(const fs::path& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool hasWildcard(std::string_view name) { return name.find_first_of("*?[") != name.npos; }

/// Calls `visit` with each entry of a folder that is not hidden, until it answers false.
template <class Visit>
void visitEntries(const fs::path& folder, Visit visit) {
  const auto close = [](DIR* directory) { ::closedir(directory); };
  const std::unique_ptr<DIR, decltype(close)> directory(::opendir(folder.c_str()), close);
  if (!directory) return;
  while (const dirent* entry = ::readdir(directory.get()))
    if (entry->d_name[0] != '.' && !visit(*entry)) return;
}

std::vector<std::string> subfolders(const fs::path& folder) {
  std::vector<std::string> names;
  visitEntries(folder, [&](const dirent& entry) {
    const bool isCertain = entry.d_type == DT_DIR;
    const bool mayBe = entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
    if (isCertain || (mayBe && isFolder(folder / entry.d_name))) names.emplace_back(entry.d_name);
    return true;
  });
  std::ranges::sort(names);
  return names;
}

class Search {
 public:
  Search(const VdirPaths& paths, const FolderWatcher& watch) : paths_(paths), watch_(watch) {}

  std::vector<CalendarFolder> run() {
    addPlaces(paths_.places);
    addPlaces(placesIn(paths_.settings, placesInSettings));
    addPlaces(paths_.wellKnown);
    for (const auto& file : paths_.khal) addPlaces(placesIn(file, placesInKhal));
    for (const auto& file : paths_.vdirsyncer) addPlaces(placesIn(file, placesInVdirsyncer));
    for (auto& file : files_)
      if (!isFound({file.path, {}, {}, file.device, file.inode}) && !isFound(file))
        found_.push_back(std::move(file));
    return std::move(found_);
  }

 private:
  using Names = std::span<const std::string>;

  static std::vector<std::string> namesIn(const fs::path& path) {
    std::vector<std::string> names;
    for (const auto& name : path.relative_path())
      if (!name.empty()) names.push_back(name.string());
    return names;
  }

  template <class Parse>
  std::vector<std::string> placesIn(const fs::path& file, Parse parse) {
    if (!file.is_absolute()) return {};
    walk("/", namesIn(file.parent_path()),
         [&](const fs::path& folder) { watch_(folder, file.filename().string()); });
    return parse(readWholeFile(file, maximumConfigurationSize).bytes);
  }

  void addPlaces(const std::vector<std::string>& places) {
    for (const auto& place : places) {
      const fs::path path = expandPlace(place, paths_.environment);
      if (path.is_absolute())
        walk("/", namesIn(path.lexically_normal()),
             [this](const fs::path& found) { addPlace(found); });
    }
  }

  /// Calls `use` with each existing path below `base` that the names, or patterns, lead to.
  template <class Use>
  void walk(const fs::path& base, Names names, const Use& use) {
    if (names.empty()) return use(base);
    const auto& name = names.front();
    const auto rest = names.subspan(1);
    // A name that has wildcards may also be meant as it is.
    if (const auto literal = base / name; statusOf(literal)) {
      if (isLink(literal) || !isAccessible(literal, R_OK)) watch_(base, name);
      return walk(literal, rest, use);
    }
    watch_(base, hasWildcard(name) ? std::string() : name);
    if (!hasWildcard(name)) return;
    for (const auto& entry : matches(base, name)) walk(base / entry, rest, use);
  }

  static std::vector<std::string> matches(const fs::path& folder, const std::string& pattern) {
    std::vector<std::string> names;
    visitEntries(folder, [&](const dirent& entry) {
      if (::fnmatch(pattern.c_str(), entry.d_name, FNM_PERIOD) == 0)
        names.emplace_back(entry.d_name);
      return true;
    });
    std::ranges::sort(names);
    return names;
  }

  void addPlace(const fs::path& place) {
    if (!isFolder(place)) return addFile(place);
    addFolder(place, place);
    for (const auto& name : subfolders(place)) addFolder(place / name, place);
  }

  void addFolder(const fs::path& folder, const fs::path& root) {
    const auto status = statusOf(folder);
    if (!status) return;
    watch_(folder, {});
    CalendarFolder found{folder, {}, root, status->st_dev, status->st_ino};
    if (!isFound(found)) found_.push_back(std::move(found));
  }

  void addFile(const fs::path& file) {
    const auto folder = file.parent_path();
    const auto status = statusOf(folder);
    if (!status || !isEventFileName(file.filename().string())) return;
    watch_(folder, file.filename().string());
    files_.push_back({folder, file.filename().string(), folder, status->st_dev, status->st_ino});
  }

  [[nodiscard]] bool isFound(const CalendarFolder& folder) const {
    return std::ranges::any_of(found_,
                               [&](const CalendarFolder& known) { return known.isSameAs(folder); });
  }

  const VdirPaths& paths_;
  const FolderWatcher& watch_;
  std::vector<CalendarFolder> found_;
  /// Those whose folder is found as a whole don't count.
  std::vector<CalendarFolder> files_;
};

bool holdsCalendar(const CalendarFolder& folder) {
  if (!folder.file.empty()) return true;
  bool isFound = false;
  visitEntries(folder.path, [&](const dirent& entry) {
    isFound = isEventFileName(entry.d_name) || isMetadataFileName(entry.d_name);
    return !isFound;
  });
  return isFound;
}

Reach reachOf(const CalendarFolder& folder) {
  const bool isSingle = !folder.file.empty();
  const auto path = isSingle ? folder.path / folder.file : folder.path;
  const int entering = isSingle ? 0 : X_OK;
  if (isAccessible(path, R_OK | entering))
    return holdsCalendar(folder) ? Reach::readable : Reach::absent;
  return isAccessible(path, W_OK | entering) ? Reach::writeOnly : Reach::closed;
}

}  // namespace

bool isEventFileName(std::string_view name) {
  constexpr std::string_view extension = ".ics";
  if (name.size() <= extension.size() || name.front() == '.') return false;
  return std::ranges::equal(name.substr(name.size() - extension.size()), extension,
                            [](unsigned char a, char b) { return std::tolower(a) == b; });
}

bool isMetadataFileName(std::string_view name) { return name == "displayname" || name == "color"; }

std::vector<CalendarFolder> findCalendarFolders(const VdirPaths& paths,
                                                const FolderWatcher& watch) {
  return Search(paths, watch).run();
}

Reach reachOf(const std::vector<CalendarFolder>& folders) {
  const auto anyIs = [&](Reach reach) {
    return std::ranges::any_of(
        folders, [&](const CalendarFolder& folder) { return reachOf(folder) == reach; });
  };
  for (const auto reach : {Reach::readable, Reach::writeOnly, Reach::closed})
    if (anyIs(reach)) return reach;
  return Reach::absent;
}

}  // namespace valdrix::desktop
