#pragma once

#include <string>
#include <string_view>

#include "platform/Workspace.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// Records what other programs are asked to show.
class SimWorkspace final : public platform::Workspace {
 public:
  explicit SimWorkspace(Trace& trace) : trace_(trace) {}

  /// A URL begins with a scheme and a colon and has no white space.
  bool open(std::string_view url) override {
    const auto colon = url.find(':');
    const bool isUrl = colon != std::string_view::npos && colon > 0 &&
                       url.find_first_of(" \t\r\n") == std::string_view::npos;
    if (isUrl) trace_.add("workspace open " + std::string(url));
    return isUrl;
  }

 private:
  Trace& trace_;
};

}  // namespace valdrix::sim
