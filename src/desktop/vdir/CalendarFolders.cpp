#include "desktop/vdir/CalendarFolders.h"

#include <algorithm>
#include <cctype>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

#include "desktop/session/WholeFile.h"
#include "desktop/vdir/CalendarPlaces.h"
#include "desktop/vdir/SlowMounts.h"

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
void visitEntries(const fs::path& folder, const Visit& visit) {
  const auto close = [](DIR* directory) { ::closedir(directory); };
  const std::unique_ptr<DIR, decltype(close)> directory(::opendir(folder.c_str()), close);
  if (!directory) return;
  while (const dirent* entry = ::readdir(directory.get()))
    if (entry->d_name[0] != '.' && !visit(*entry)) return;
}

/// What a search is for.
struct SearchRules {
  SearchHooks hooks{};
  /// Called before each look at a path; the search ends when it answers true.
  std::function<bool(const fs::path&)> isTooMuch = [](const auto&) { return false; };
  /// Called with each folder that may hold a calendar, and whether what leads to it is there for
  /// calendars alone; the search ends when it answers true.
  std::function<bool(const CalendarFolder&, bool)> isEnough = [](const auto&, bool) {
    return false;
  };
  std::size_t maximumEntries = std::numeric_limits<std::size_t>::max();  ///< of one folder
};

class Search {
 public:
  Search(const VdirPaths& paths, SearchRules rules) : paths_(paths), rules_(std::move(rules)) {}

  std::vector<CalendarFolder> run() {
    addPlaces(paths_.places, true);
    addPlaces(placesIn(paths_.settings, placesInSettings));
    addPlaces(paths_.wellKnown, true);
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
         [&](const fs::path& folder) { rules_.hooks.watch(folder, file.filename().string()); });
    if (!mayLook(file)) return {};
    return parse(readWholeFile(file, maximumConfigurationSize).bytes);
  }

  bool mayLook(const fs::path& path) {
    isDone_ = isDone_ || rules_.isTooMuch(path);
    return !isDone_ && rules_.hooks.mayLook(path);
  }

  void addPlaces(const std::vector<std::string>& places, bool areForCalendars = false) {
    areForCalendars_ = areForCalendars;
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
    const auto literal = base / name;
    if (!mayLook(literal)) return;
    // A name that has wildcards may also be meant as it is.
    if (statusOf(literal)) {
      if (isLink(literal) || !isAccessible(literal, R_OK)) rules_.hooks.watch(base, name);
      return walk(literal, rest, use);
    }
    rules_.hooks.watch(base, hasWildcard(name) ? std::string() : name);
    if (!hasWildcard(name)) return;
    for (const auto& entry : matches(base, name))
      if (mayLook(base / entry)) walk(base / entry, rest, use);
  }

  /// The names of the entries that fit, in order.
  template <class Fits>
  [[nodiscard]] std::vector<std::string> namesOf(const fs::path& folder, const Fits& fits) const {
    std::vector<std::string> names;
    std::size_t count = 0;
    visitEntries(folder, [&](const dirent& entry) {
      if (fits(entry)) names.emplace_back(entry.d_name);
      return ++count < rules_.maximumEntries && !isDone_;
    });
    std::ranges::sort(names);
    return names;
  }

  [[nodiscard]] std::vector<std::string> matches(const fs::path& folder,
                                                 const std::string& pattern) const {
    return namesOf(folder, [&](const dirent& entry) {
      return ::fnmatch(pattern.c_str(), entry.d_name, FNM_PERIOD) == 0;
    });
  }

  std::vector<std::string> subfolders(const fs::path& folder) {
    return namesOf(folder, [&](const dirent& entry) {
      const bool isCertain = entry.d_type == DT_DIR;
      const bool mayBe = isCertain || entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
      const auto path = folder / entry.d_name;
      return mayBe && mayLook(path) && (isCertain || isFolder(path));
    });
  }

  void addPlace(const fs::path& place) {
    if (!isFolder(place)) return addFile(place);
    addFolder(place, place);
    for (const auto& name : subfolders(place)) addFolder(place / name, place);
  }

  void addFolder(const fs::path& folder, const fs::path& root) {
    if (!rules_.hooks.mayLook(folder)) return;
    const auto status = statusOf(folder);
    if (!status || isDone_) return;
    rules_.hooks.watch(folder, {});
    CalendarFolder found{folder, {}, root, status->st_dev, status->st_ino};
    isDone_ = rules_.isEnough(found, areForCalendars_ || folder == root);
    if (!isFound(found)) found_.push_back(std::move(found));
  }

  void addFile(const fs::path& file) {
    const auto folder = file.parent_path();
    const auto status = statusOf(folder);
    if (!status || !isEventFileName(file.filename().string())) return;
    rules_.hooks.watch(folder, file.filename().string());
    files_.push_back({folder, file.filename().string(), folder, status->st_dev, status->st_ino});
    isDone_ = isDone_ || rules_.isEnough(files_.back(), true);
  }

  [[nodiscard]] bool isFound(const CalendarFolder& folder) const {
    return std::ranges::any_of(found_,
                               [&](const CalendarFolder& known) { return known.isSameAs(folder); });
  }

  const VdirPaths& paths_;
  SearchRules rules_;
  bool areForCalendars_ = false;  ///< the places that are being looked at
  bool isDone_ = false;
  std::vector<CalendarFolder> found_;
  /// Those whose folder is found as a whole don't count.
  std::vector<CalendarFolder> files_;
};

/// So many looks are quick, whatever places and configurations there are.
constexpr std::size_t mostLooks = 1000;
constexpr std::size_t mostEntries = 500;

/// Whether there is a calendar in a folder, or so much else that it cannot be told at once.
bool mayHoldCalendar(const CalendarFolder& folder) {
  if (!folder.file.empty()) return true;
  bool mayHold = false;
  std::size_t count = 0;
  visitEntries(folder.path, [&](const dirent& entry) {
    mayHold =
        isEventFileName(entry.d_name) || isMetadataFileName(entry.d_name) || ++count == mostEntries;
    return !mayHold;
  });
  return mayHold;
}

Reach reachOf(const CalendarFolder& folder, bool isForCalendars) {
  const bool isSingle = !folder.file.empty();
  const auto path = isSingle ? folder.path / folder.file : folder.path;
  const int entering = isSingle ? 0 : X_OK;
  if (isAccessible(path, R_OK | entering))
    return mayHoldCalendar(folder) ? Reach::readable : Reach::absent;
  if (!isForCalendars) return Reach::absent;
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

std::vector<CalendarFolder> findCalendarFolders(const VdirPaths& paths, SearchHooks hooks) {
  SearchRules rules;
  rules.hooks = std::move(hooks);
  return Search(paths, std::move(rules)).run();
}

Reach reachOf(const VdirPaths& paths) {
  const auto mounts = SlowMounts::current();
  auto best = Reach::absent;
  std::size_t looks = 0;
  const auto isReadable = [&best](Reach reach) {
    if (best == Reach::absent || (reach != Reach::absent && reach < best)) best = reach;
    return best == Reach::readable;
  };
  SearchRules rules;
  rules.isTooMuch = [&](const fs::path& path) {
    const bool isQuick = ++looks <= mostLooks && !mounts.areOnTheWayTo(path);
    return !isQuick && isReadable(Reach::readable);
  };
  rules.isEnough = [&](const CalendarFolder& folder, bool isForCalendars) {
    return isReadable(reachOf(folder, isForCalendars));
  };
  rules.maximumEntries = mostEntries;
  static_cast<void>(Search(paths, std::move(rules)).run());
  return best;
}

}  // namespace valdrix::desktop
