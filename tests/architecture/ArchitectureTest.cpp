// Which folder of src/ may include which, and which libraries.

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace valdrix::tests {

namespace {

namespace fs = std::filesystem;

/// One room, the rooms right below it, and the libraries that it may name beside the standard one.
/// What lies below a room below is allowed too.
struct Room {
  std::string_view name;
  std::vector<std::string_view> below;
  std::vector<std::string_view> libraries;
};

const std::vector<Room>& rooms() {
  static const std::vector<Room> theRooms = {
      {"observation", {}, {}},
      {"view", {"observation"}, {}},
      {"platform", {"view"}, {}},
      {"preferences", {"platform"}, {}},
      {"media", {"preferences"}, {}},
      {"calendar", {"preferences"}, {}},
      {"notch", {"media", "calendar"}, {}},
      {"settings", {"media", "calendar"}, {}},
      {"app", {"notch", "settings"}, {}},
      {"sim", {"app"}, {}},
      {"desktop/ui", {"platform"}, {"system", "Qt"}},
      {"desktop/session", {"platform"}, {"system", "Qt"}},
      {"desktop/screens", {"desktop/session"}, {"Qt"}},
      {"desktop/keys", {"platform"}, {}},
      {"desktop/x11", {"desktop/ui", "desktop/screens", "desktop/keys"}, {"system", "Qt", "X11"}},
      {"desktop/wayland",
       {"desktop/ui", "desktop/screens"},
       {"system", "Qt", "Wayland", "Xcursor"}},
      {"desktop/audio", {"platform"}, {"system", "PulseAudio"}},
      {"desktop/display", {"platform"}, {"system", "Qt"}},
      {"desktop/workspace", {"desktop/session"}, {"system", "Qt"}},
      {"desktop/calendar", {"desktop/session"}, {"system", "Qt"}},
      {"desktop/icalendar", {"platform"}, {"system", "Qt", "libical"}},
      {"desktop/vdir", {"desktop/calendar", "desktop/icalendar"}, {"system", "Qt"}},
      {"desktop/calendarserver", {"desktop/calendar", "desktop/icalendar"}, {"system", "Qt"}},
      {"desktop/net", {"platform"}, {"system", "Qt", "libcurl"}},
      {"desktop/shortcuts", {"desktop/keys", "desktop/session"}, {"system", "Qt"}},
      {"desktop/tray", {"desktop/ui", "desktop/session"}, {"system", "Qt"}},
      {"desktop/scenes", {"desktop/tray"}, {"system", "Qt"}},
      {"desktop/privacy",
       {"desktop/scenes", "desktop/calendar", "desktop/keys", "desktop/shortcuts"},
       {"system", "Qt"}},
      {"desktop",
       {"desktop/ui", "desktop/x11", "desktop/wayland", "desktop/audio", "desktop/display",
        "desktop/workspace", "desktop/vdir", "desktop/calendarserver", "desktop/privacy",
        "desktop/shortcuts"},
       {"system", "Qt"}},
      {"commands", {"app", "sim", "desktop"}, {"system", "Qt"}},
      {"main", {"commands", "desktop/net"}, {}},
  };
  return theRooms;
}

const Room* find(std::string_view name) {
  const auto room = std::ranges::find(rooms(), name, &Room::name);
  return room == rooms().end() ? nullptr : &*room;
}

bool reaches(const Room& from, std::string_view to) {
  return std::ranges::any_of(
      from.below, [&](std::string_view name) { return name == to || reaches(*find(name), to); });
}

// Of the headers that a program can meet, only the standard library's have a name of lower-case
// letters without an extension.
bool isStandard(std::string_view header) {
  return std::ranges::all_of(header, [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; });
}

/// The library that an angle-bracket header belongs to; none for one that nobody may use.
std::optional<std::string_view> libraryOf(std::string_view header) {
  struct Family {
    std::string_view start;
    std::string_view library;
  };
  static constexpr std::array families = {
      Family{"Q", "Qt"},
      Family{"qpa/", "Qt"},
      Family{"xcb/", "X11"},
      Family{"X11/Xcursor", "Xcursor"},
      Family{"X11/", "X11"},
      Family{"xkbcommon/", "X11"},
      Family{"wayland-", "Wayland"},
      Family{"linux/", "system"},
      Family{"pulse/", "PulseAudio"},
      Family{"sys/", "system"},
      Family{"curl/", "libcurl"},
      Family{"libical/", "libical"},
  };
  for (const auto& family : families)
    if (header.starts_with(family.start)) return family.library;
  // What remains is the C library's: <unistd.h>, <poll.h>.
  if (header.ends_with(".h") && header.find('/') == header.npos) return "system";
  return std::nullopt;
}

struct Include {
  std::string header;
  bool isAngled;
};

/// What an `#include` line names; none for any other line.
std::optional<Include> parseInclude(std::string_view line) {
  const auto skip = [&line](std::string_view expected) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(expected)) return false;
    line.remove_prefix(expected.size());
    return true;
  };
  if (!skip("#") || !skip("include")) return std::nullopt;
  const bool isAngled = skip("<");
  if (!isAngled && !skip("\"")) return std::nullopt;
  return Include{std::string(line.substr(0, line.find(isAngled ? '>' : '"'))), isAngled};
}

/// The room that a file lives in: the folder under src/, written as in its `valdrix_room` line
/// ("view", "desktop/x11"); "desktop" for files right in that folder, and "main" for those right in
/// src/. `path` is relative to src/.
std::string roomOf(std::string_view path) {
  const auto slash = path.find('/');
  if (slash == std::string_view::npos) return "main";
  const auto folder = path.substr(0, slash);
  if (folder != "desktop") return std::string(folder);
  return std::string(path.substr(0, std::max(slash, path.find_last_of('/'))));
}

std::optional<std::string> quotedFault(const Room& room, const std::string& header) {
  if (header.ends_with(".moc")) return std::nullopt;
  const auto target = roomOf(header);
  if (target == "main") return '"' + header + "\" is not written from src/";
  if (target == room.name || reaches(room, target)) return std::nullopt;
  return std::string(room.name) + " must not know " + target + ": \"" + header + '"';
}

std::optional<std::string> angledFault(const Room& room, const std::string& header) {
  if (isStandard(header)) return std::nullopt;
  if (const auto library = libraryOf(header);
      library && std::ranges::find(room.libraries, *library) != room.libraries.end())
    return std::nullopt;
  return std::string(room.name) + " must not use <" + header + '>';
}

/// Every `#include` line of a source file that breaks the rules of its room, as one line of text
/// each. `path` is relative to src/.
std::vector<std::string> includeViolations(std::string_view path, std::string_view source) {
  const auto name = roomOf(path);
  const Room* room = find(name);
  if (!room) return {std::string(path) + ":1: no rule names the room " + name};

  std::vector<std::string> violations;
  std::istringstream lines{std::string(source)};
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    const auto include = parseInclude(line);
    if (!include) continue;
    const auto fault = include->isAngled ? angledFault(*room, include->header)
                                         : quotedFault(*room, include->header);
    if (fault)
      violations.push_back(std::string(path) + ':' + std::to_string(number) + ": " + *fault);
  }
  return violations;
}

std::string contentsOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(Architecture, IncludesRunDownTheHouseOnly) {
  const fs::path sources = VALDRIX_SOURCE_FOLDER;
  int count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(sources)) {
    const auto extension = entry.path().extension();
    if (extension != ".h" && extension != ".cpp") continue;
    ++count;
    const auto path = fs::relative(entry.path(), sources).generic_string();
    for (const auto& violation : includeViolations(path, contentsOf(entry.path())))
      ADD_FAILURE() << "src/" << violation;
  }
  EXPECT_GT(count, 0) << "nothing to read in " << sources;
}

TEST(Architecture, ViolationsAreFound) {
  const struct {
    const char* path;
    const char* include;
    bool isAllowed;
  } rows[]{
      {"app/AppDelegate.h", "# include \"observation/Token.h\"\r", true},
      {"view/Path.h", "#include \"platform/RunLoop.h\"", false},
      {"view/Path.h", "// #include \"platform/RunLoop.h\"", true},
      {"sim/Trace.cpp", "#include \"Trace.h\"", false},
      {"desktop/x11/X11Panel.h", "#include \"desktop/ui/QtCanvas.h\"", true},
      {"desktop/ui/QtCanvas.h", "#include\t\"desktop/x11/X11Panel.h\"", false},
      {"sim/Trace.cpp", "#include <unistd.h>", false},
      {"view/Path.h", "#ifdef X\n#  include <QPainterPath>", false},
      {"desktop/ui/QtCanvas.cpp", "#include <QPainter>", true},
      {"desktop/ui/QtCanvas.cpp", "#include <xcb/xcb.h>", false},
      {"helpers/Text.h", "#include <string>", false},
  };
  for (const auto& row : rows)
    EXPECT_EQ(includeViolations(row.path, row.include).empty(), row.isAllowed)
        << row.path << ' ' << row.include;
}

}  // namespace

}  // namespace valdrix::tests
