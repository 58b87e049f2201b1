#include "tests/display/SysfsTree.h"

#include <fstream>

namespace valdrix::tests {
namespace fs = std::filesystem;

SysfsTree::SysfsTree() {
  fs::permissions(root_, fs::perms(0755));
  fs::create_directories(root_ / "class" / "backlight");
  fs::create_directories(root_ / "class" / "drm");
}

void SysfsTree::write(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::trunc) << text;
}

void SysfsTree::setConnector(const std::string& device, const std::string& name,
                             const std::string& status, const std::string& enabled) {
  const auto card = name.substr(0, name.find('-'));
  const auto folder = fs::path("devices") / device / "drm" / card / name;
  fs::create_directories(root_ / folder);
  const auto link = root_ / "class" / "drm" / name;
  if (!fs::exists(link)) fs::create_symlink("../.." / folder, link);
  write(root_ / folder / "status", status + '\n');
  write(root_ / folder / "enabled", enabled + '\n');
}

void SysfsTree::addBacklight(const std::string& name, const std::string& type,
                             const std::string& device, std::uint64_t maxBrightness) {
  const auto parent = fs::path("devices") / (device.empty() ? "virtual" : device);
  const auto folder = parent / "backlight" / name;
  fs::create_directories(root_ / folder);
  fs::create_symlink("../.." / folder, root_ / "class" / "backlight" / name);
  if (!device.empty()) fs::create_symlink("../..", root_ / folder / "device");
  write(root_ / folder / "type", type + '\n');
  write(root_ / folder / "scale", "unknown\n");
  write(root_ / folder / "max_brightness", std::to_string(maxBrightness) + '\n');
  setBrightness(name, maxBrightness / 2);
}

fs::path SysfsTree::backlightFile(const std::string& name, const std::string& file) const {
  return root_ / "class" / "backlight" / name / file;
}

void SysfsTree::setBrightness(const std::string& name, std::uint64_t brightness) {
  for (const auto* const file : {"brightness", "actual_brightness"})
    write(backlightFile(name, file), std::to_string(brightness) + '\n');
}

std::uint64_t SysfsTree::brightness(const std::string& name) const {
  std::uint64_t value = 0;
  std::ifstream(backlightFile(name, "brightness")) >> value;
  return value;
}

void SysfsTree::setWritable(const std::string& name, bool isWritable) {
  fs::permissions(backlightFile(name, "brightness"), fs::perms(isWritable ? 0666 : 0444));
}

}  // namespace valdrix::tests
