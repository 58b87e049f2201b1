#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace valdrix::desktop {

/// What a clock and a calendar on the wall show, in whatever zone.
using WallTime = std::chrono::local_seconds;

/// A DATE or DATE-TIME as it is written.
struct IcalDateTime {
  WallTime wall;
  bool isDate = false;
  bool isUtc = false;
};

/// A DURATION: days count by the calendar, seconds by the clock. Never negative.
struct IcalDuration {
  std::chrono::days days{};
  std::chrono::seconds seconds{};
};

/// Reads `YYYYMMDD`, `YYYYMMDDTHHMMSS` or the latter with a `Z`; nothing for anything else and for
/// days and times that do not exist.
[[nodiscard]] std::optional<IcalDateTime> parseDateTime(std::string_view value);

/// Reads `P1W`, `P1DT2H3M4S` and the like; nothing for negative ones and beyond 10 000 years.
[[nodiscard]] std::optional<IcalDuration> parseDuration(std::string_view value);

/// Reads `+0100` or `-013045`.
[[nodiscard]] std::optional<std::chrono::seconds> parseUtcOffset(std::string_view value);

/// Reads a TEXT: its escapes resolved, cut to `maximumSize` bytes, bytes that are no UTF-8
/// replaced.
[[nodiscard]] std::string parseText(std::string_view value, std::size_t maximumSize);

}  // namespace valdrix::desktop
