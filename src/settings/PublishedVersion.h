#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace valdrix {

/// The version that a published file holds: its text without the white space and line breaks around
/// it, of any script. Nothing when that leaves nothing or the file is not UTF-8.
[[nodiscard]] std::optional<std::string> publishedVersion(std::string_view file);

}  // namespace valdrix
