#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/Workspace.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// Records what other programs are asked to show.
class SimWorkspace final : public platform::Workspace {
 public:
  explicit SimWorkspace(Trace& trace) : trace_(trace) {}

  /// A URL begins with a scheme and a colon and has no white space, but for the spaces of an
  /// event's identifier, and no control characters.
  bool open(std::string_view url) override {
    const auto colon = url.find(':');
    const bool mayHoldSpaces = url.starts_with("ical://ekevent/");
    const bool isUrl =
        colon != std::string_view::npos && colon > 0 && std::ranges::none_of(url, [&](char c) {
          return (c >= 0 && c < ' ') || c == '\x7F' || (c == ' ' && !mayHoldSpaces);
        });
    if (isUrl) trace_.add("workspace open " + std::string(url));
    return isUrl;
  }

 private:
  Trace& trace_;
};

}  // namespace valdrix::sim
