#include "sim/SimDisplays.h"

namespace valdrix::sim {

std::optional<std::vector<platform::DisplayID>> SimDisplays::getActiveDisplayList() const {
  if (isFailing_) return std::nullopt;
  std::vector<platform::DisplayID> displays;
  for (const auto& [display, isBuiltin] : isBuiltin_) displays.push_back(display);
  return displays;
}

bool SimDisplays::isBuiltin(platform::DisplayID display) const {
  const auto found = isBuiltin_.find(display);
  return found != isBuiltin_.end() && found->second;
}

void SimDisplays::plug(platform::DisplayID display, bool isBuiltin) {
  isBuiltin_.insert_or_assign(display, isBuiltin);
}

}  // namespace valdrix::sim
