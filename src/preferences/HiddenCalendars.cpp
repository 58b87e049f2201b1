#include "preferences/HiddenCalendars.h"

#include <algorithm>

namespace valdrix {

HiddenCalendars HiddenCalendars::parse(std::string_view list) {
  HiddenCalendars hidden;
  while (!list.empty()) {
    const auto length = std::min(list.find(','), list.size());
    if (length > 0) hidden.ids_.emplace(list.substr(0, length));
    list.remove_prefix(std::min(length + 1, list.size()));
  }
  return hidden;
}

std::string HiddenCalendars::serialized() const {
  std::string list;
  for (const auto& id : ids_) {
    if (!list.empty()) list += ',';
    list += id;
  }
  return list;
}

bool HiddenCalendars::contains(std::string_view calendarID) const {
  return ids_.find(calendarID) != ids_.end();
}

void HiddenCalendars::setHidden(std::string_view calendarID, bool isHidden) {
  if (isHidden) {
    ids_.emplace(calendarID);
  } else if (const auto id = ids_.find(calendarID); id != ids_.end()) {
    ids_.erase(id);
  }
}

}  // namespace valdrix
