#include "desktop/icalendar/IcalValues.h"

#include <algorithm>
#include <cstdint>

#include <QString>

namespace valdrix::desktop {

using namespace std::chrono_literals;

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The number that so many digits write, taken off the front of `text`.
std::optional<int> takeDigits(std::string_view& text, std::size_t count) {
  if (text.size() < count || !std::ranges::all_of(text.substr(0, count), isDigit)) return {};
  int number = 0;
  for (const char digit : text.substr(0, count)) number = number * 10 + (digit - '0');
  text.remove_prefix(count);
  return number;
}

std::optional<std::chrono::seconds> takeTimeOfDay(std::string_view& text) {
  const auto hour = takeDigits(text, 2);
  const auto minute = takeDigits(text, 2);
  const auto second = takeDigits(text, 2);
  // 60 is a leap second, which no clock of ours knows.
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 60) return {};
  return std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
         std::chrono::seconds(std::min(*second, 59));
}

/// How many seconds one of a duration's unit is; 0 for no unit.
std::int64_t clockUnit(char unit) {
  return unit == 'H' ? 3600 : unit == 'M' ? 60 : unit == 'S' ? 1 : 0;
}
std::int64_t calendarUnit(char unit) { return unit == 'W' ? 7 : unit == 'D' ? 1 : 0; }

char unescaped(char c) { return c == 'n' || c == 'N' ? '\n' : c; }

std::string validUtf8(std::string text) {
  const bool isAscii = std::ranges::all_of(text, [](char c) { return c > 0; });
  if (isAscii) return text;
  std::erase(text, '\0');
  return QString::fromUtf8(text).toStdString();
}

/// Cuts in front of a character, not inside.
void cut(std::string& text, std::size_t size) {
  if (text.size() <= size) return;
  const auto isContinuation = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
  };
  while (size > 0 && isContinuation(text[size])) --size;
  text.resize(size);
}

}  // namespace

std::optional<IcalDateTime> parseDateTime(std::string_view value) {
  const auto year = takeDigits(value, 4);
  const auto month = takeDigits(value, 2);
  const auto day = takeDigits(value, 2);
  if (!year || !month || !day) return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(*year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok() || *year == 0) return std::nullopt;
  const WallTime midnight = std::chrono::local_days(date);
  if (value.empty()) return IcalDateTime{.wall = midnight, .isDate = true};

  if (value.front() != 'T' && value.front() != 't') return std::nullopt;
  value.remove_prefix(1);
  const auto time = takeTimeOfDay(value);
  const bool isUtc = value == "Z" || value == "z";
  if (!time || !(value.empty() || isUtc)) return std::nullopt;
  return IcalDateTime{.wall = midnight + *time, .isUtc = isUtc};
}

std::optional<IcalDuration> parseDuration(std::string_view value) {
  constexpr std::int64_t tooLong = std::int64_t{10'000} * 366 * 24 * 3600;
  if (value.starts_with('+')) value.remove_prefix(1);
  if (!value.starts_with('P') || value.size() < 3) return std::nullopt;
  value.remove_prefix(1);
  std::int64_t days = 0;
  std::int64_t seconds = 0;
  bool isClock = false;
  while (!value.empty()) {
    if (value.front() == 'T' && !isClock) {
      isClock = true;
      value.remove_prefix(1);
    }
    std::int64_t number = 0;
    std::size_t digits = 0;
    for (; digits < value.size() && isDigit(value[digits]) && number < tooLong; ++digits)
      number = number * 10 + (value[digits] - '0');
    if (digits == 0 || digits == value.size() || number >= tooLong) return std::nullopt;
    const std::int64_t unit = isClock ? clockUnit(value[digits]) : calendarUnit(value[digits]);
    if (unit == 0) return std::nullopt;
    (isClock ? seconds : days) += number * unit;
    if (days * 24 * 3600 + seconds > tooLong) return std::nullopt;
    value.remove_prefix(digits + 1);
  }
  return IcalDuration{.days = std::chrono::days(days), .seconds = std::chrono::seconds(seconds)};
}

std::optional<std::chrono::seconds> parseUtcOffset(std::string_view value) {
  if (!value.starts_with('+') && !value.starts_with('-')) return std::nullopt;
  const int sign = value.front() == '-' ? -1 : 1;
  value.remove_prefix(1);
  const std::string padded = std::string(value) + (value.size() == 4 ? "00" : "");
  std::string_view digits = padded;
  const auto offset = takeTimeOfDay(digits);
  if (!offset || !digits.empty()) return std::nullopt;
  return sign * *offset;
}

std::string parseText(std::string_view value, std::size_t maximumSize) {
  std::string text;
  text.reserve(std::min(value.size(), maximumSize));
  for (std::size_t at = 0; at < value.size() && text.size() <= maximumSize; ++at) {
    const bool isEscaped = value[at] == '\\' && at + 1 < value.size();
    text += isEscaped ? unescaped(value[++at]) : value[at];
  }
  cut(text, maximumSize);
  return validUtf8(std::move(text));
}

}  // namespace valdrix::desktop
