#include "sim/SimUserDefaults.h"

namespace valdrix::sim {

void SimUserDefaults::set(std::string_view key, Value value) {
  auto text = textOf(value);
  trace_.add("preference " + std::string(key) + " = " + (text.empty() ? "\"\"" : text));
  stored_.insert_or_assign(std::string(key), std::move(text));
  listeners_.notify();
}

void SimUserDefaults::setFromOutside(std::string_view key, std::string text) {
  stored_.insert_or_assign(std::string(key), std::move(text));
  listeners_.notify();
}

void SimUserDefaults::removeFromOutside(std::string_view key) {
  if (const auto stored = stored_.find(key); stored != stored_.end()) stored_.erase(stored);
  listeners_.notify();
}

std::optional<std::string_view> SimUserDefaults::storedText(std::string_view key) const {
  const auto stored = stored_.find(key);
  if (stored == stored_.end()) return std::nullopt;
  return stored->second;
}

}  // namespace valdrix::sim
