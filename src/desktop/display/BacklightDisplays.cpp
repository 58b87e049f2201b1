#include "desktop/display/BacklightDisplays.h"

#include <system_error>

namespace valdrix::desktop {

using platform::DisplayID;

std::optional<std::vector<DisplayID>> BacklightDisplays::getActiveDisplayList() const {
  active_.clear();
  const auto tree = readBacklightTree(sysfs_);
  if (!tree) return std::nullopt;
  std::vector<DisplayID> list;
  for (auto& display : activeDisplays(*tree)) {
    list.push_back(idOf(display.name));
    active_.emplace(list.back(), std::move(display));
  }
  return list;
}

bool BacklightDisplays::isBuiltin(DisplayID display) const {
  const auto found = active_.find(display);
  return found != active_.end() && found->second.isBuiltin;
}

const Backlight* BacklightDisplays::backlight(DisplayID display) const {
  const auto found = active_.find(display);
  if (found == active_.end() || !found->second.backlight) return nullptr;
  return &*found->second.backlight;
}

bool BacklightDisplays::hasBacklightClass() const {
  std::error_code error;
  return std::filesystem::is_directory(sysfs_ / "class" / "backlight", error);
}

DisplayID BacklightDisplays::idOf(const std::string& name) const {
  return ids_.try_emplace(name, static_cast<DisplayID>(ids_.size() + 1)).first->second;
}

}  // namespace valdrix::desktop
