#pragma once

#include <string_view>

/// What a `Workspace` opens to show the user where permissions are given and taken back.
namespace valdrix::platform::privacyLinks {

inline constexpr std::string_view calendars =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Calendars";
inline constexpr std::string_view accessibility =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

}  // namespace valdrix::platform::privacyLinks
