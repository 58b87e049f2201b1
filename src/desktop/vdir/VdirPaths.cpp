#include "desktop/vdir/VdirPaths.h"

#include <string_view>
#include <unistd.h>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

using Environment = std::map<std::string, std::string>;

Environment currentEnvironment() {
  Environment variables;
  for (char** variable = ::environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (const auto equals = text.find('='); equals != std::string_view::npos)
      variables.emplace(text.substr(0, equals), text.substr(equals + 1));
  }
  return variables;
}

fs::path valueOf(const Environment& environment, const char* name) {
  const auto found = environment.find(name);
  return found == environment.end() ? fs::path() : fs::path(found->second);
}

// Relative paths are to be ignored, say the rules for these variables.
fs::path baseFolder(const Environment& environment, const char* name, const char* inHome) {
  const auto folder = valueOf(environment, name);
  return folder.is_absolute() ? folder : valueOf(environment, "HOME") / inHome;
}

}  // namespace

VdirPaths VdirPaths::standard() {
  VdirPaths paths;
  paths.environment = currentEnvironment();
  const auto& environment = paths.environment;
  const auto data = baseFolder(environment, "XDG_DATA_HOME", ".local/share");
  const auto configuration = baseFolder(environment, "XDG_CONFIG_HOME", ".config");
  const auto home = valueOf(environment, "HOME");
  paths.places = {(data / "valdrix" / "calendars").string()};
  paths.settings = configuration / "valdrix" / "calendars.conf";
  paths.wellKnown = {(data / "calendars").string(), "~/.local/share/calendars", "~/.calendars"};
  paths.khal = {configuration / "khal" / "config", home / ".khal" / "khal.conf"};
  paths.vdirsyncer = {configuration / "vdirsyncer" / "config", home / ".vdirsyncer" / "config"};
  if (const auto own = valueOf(environment, "VDIRSYNCER_CONFIG"); own.is_absolute())
    paths.vdirsyncer = {own};
  paths.index = baseFolder(environment, "XDG_CACHE_HOME", ".cache") / "valdrix" / "calendars.index";
  return paths;
}

}  // namespace valdrix::desktop
