#pragma once

#include <string>
#include <string_view>

/// What the program is called, and where on the web it lives.
namespace valdrix::applicationInfo {

inline constexpr std::string_view name = "valdrix";

/// The project's website, chosen when the program is built. Without a slash at its end.
[[nodiscard]] std::string_view websiteURL();
/// The file there whose text is the version that is published now.
[[nodiscard]] std::string versionURL();

}  // namespace valdrix::applicationInfo
