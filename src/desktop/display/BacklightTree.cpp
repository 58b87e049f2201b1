#include "desktop/display/BacklightTree.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <string_view>

#include <system_error>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

std::string readLine(const fs::path& file) {
  std::string line;
  std::ifstream stream(file);
  std::getline(stream, line);
  return line;
}

std::vector<fs::path> children(const fs::path& folder) {
  std::vector<fs::path> paths;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error))
    paths.push_back(entry->path());
  std::ranges::sort(paths);
  return paths;
}

bool startsWithNumber(std::string_view name, std::string_view prefix) {
  return name.starts_with(prefix) && name.size() > prefix.size() &&
         std::isdigit(static_cast<unsigned char>(name[prefix.size()])) != 0;
}

bool isCardOrConnector(std::string_view name) { return startsWithNumber(name, "card"); }
bool isConnector(std::string_view name) {
  return isCardOrConnector(name) && name.find('-') != std::string_view::npos;
}

Backlight::Type parseType(std::string_view text) {
  if (text == "firmware") return Backlight::Type::firmware;
  return text == "platform" ? Backlight::Type::platform : Backlight::Type::raw;
}

// Drivers hang a backlight below its connector, below the card, or beside the card below their
// common device; a monitor's data channel in turn hangs below its connector or the graphics device.
void locate(Backlight& backlight) {
  std::error_code error;
  auto device = fs::canonical(backlight.folder / "device", error);
  if (error) device = fs::canonical(backlight.folder, error);
  for (const auto& part : device) {
    const auto name = part.string();
    if (isConnector(name)) {
      backlight.connector = name;
    } else if (isCardOrConnector(name)) {
      backlight.cards = {name};
    }
    backlight.isAttached |= startsWithNumber(name, "usb") || name.starts_with("ddcci");
  }
  if (!backlight.cards.empty()) return;
  for (const auto& card : children(device / "drm"))
    if (isCardOrConnector(card.filename().string()))
      backlight.cards.push_back(card.filename().string());
}

Backlight readBacklight(const fs::path& folder) {
  Backlight backlight;
  backlight.name = folder.filename().string();
  backlight.folder = folder;
  backlight.type = parseType(readLine(folder / "type"));
  backlight.maxBrightness = readSysfsNumber(folder / "max_brightness").value_or(0);
  backlight.isAttached = backlight.name.starts_with("ddcci");
  locate(backlight);
  return backlight;
}

}  // namespace

std::string Connector::card() const { return name.substr(0, name.find('-')); }

bool Connector::isPanel() const {
  const auto kind = std::string_view(name).substr(std::min(name.find('-'), name.size()));
  return kind.starts_with("-eDP-") || kind.starts_with("-LVDS-") || kind.starts_with("-DSI-");
}

std::optional<BacklightTree> readBacklightTree(const fs::path& sysfs) {
  std::error_code error;
  if (!fs::is_directory(sysfs / "class", error)) return std::nullopt;
  BacklightTree tree;
  for (const auto& folder : children(sysfs / "class" / "backlight"))
    tree.backlights.push_back(readBacklight(folder));
  // Of a connector whose state cannot be read or is unknown, nothing speaks against it.
  for (const auto& folder : children(sysfs / "class" / "drm"))
    if (const auto name = folder.filename().string(); isConnector(name))
      tree.connectors.push_back({name, readLine(folder / "status") != "disconnected",
                                 readLine(folder / "enabled") != "disabled"});
  return tree;
}

std::optional<std::uint64_t> readSysfsNumber(const fs::path& file) {
  const auto text = readLine(file);
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace valdrix::desktop
