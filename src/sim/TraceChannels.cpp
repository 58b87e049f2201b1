#include "sim/TraceChannels.h"

#include <algorithm>
#include <array>

namespace valdrix::sim {

namespace {

constexpr auto channelNames = std::to_array<std::string_view>({
    "access",  "accessibility", "application",  "audio",      "brightness", "click",
    "cursor",  "desktop",       "display",      "ease",       "events",     "expandedSize",
    "frames",  "haptic",        "level",        "login-item", "menu",       "network",
    "picture", "preference",    "presentation", "query",      "screens",    "settings",
    "spring",  "tap",           "texts",        "timer",      "timers",     "tooltip",
    "window",  "workspace",
});

std::string_view channelOf(std::string_view text) { return text.substr(0, text.find(' ')); }

}  // namespace

bool isTraceChannel(std::string_view word) {
  return std::ranges::find(channelNames, word) != channelNames.end();
}

std::vector<std::string> traceLines(const Trace& trace, const std::vector<std::string>& channels) {
  std::vector<std::string> lines;
  for (const auto& line : trace.lines())
    if (channels.empty() || std::ranges::find(channels, channelOf(line.text)) != channels.end())
      lines.push_back(formatNumber(line.time) + ' ' + line.text);
  return lines;
}

}  // namespace valdrix::sim
