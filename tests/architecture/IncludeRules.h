#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace valdrix::tests {

/// The room that a file lives in: the folder under src/, written as in its `valdrix_room` line
/// ("view", "desktop/x11"); "desktop" for files right in that folder, and "main" for those right in
/// src/. `path` is relative to src/.
[[nodiscard]] std::string roomOf(std::string_view path);

/// Whether the rules name this room.
[[nodiscard]] bool isKnownRoom(std::string_view room);

/// Every `#include` line of a source file that breaks the rules of its room, as one line of text
/// each: "path:line: what is wrong". `path` is relative to src/.
[[nodiscard]] std::vector<std::string> includeViolations(std::string_view path,
                                                         std::string_view source);

}  // namespace valdrix::tests
