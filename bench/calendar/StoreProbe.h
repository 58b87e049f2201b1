#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>

namespace valdrix::bench {

/// What a program measured of itself, by name.
using Figures = std::map<std::string, double>;

/// Starts valdrix's source on the calendars below `home`, waits until it shows `expected` events of
/// the week, then changes one of them so many times, and measures. For a process of its own.
[[nodiscard]] Figures probeStore(const std::filesystem::path& home, std::size_t expected,
                                 int changes);

/// What takes the least code: reads every file of a folder with libical, one after the other, and
/// lists the week's occurrences.
[[nodiscard]] Figures probeNaive(const std::filesystem::path& folder);

}  // namespace valdrix::bench
