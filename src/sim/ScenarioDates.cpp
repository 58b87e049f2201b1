#include "sim/ScenarioDates.h"

#include <charconv>
#include <optional>
#include <string>

#include "sim/ScenarioError.h"

namespace valdrix::sim {

using namespace std::chrono;

namespace {

constexpr unsigned lastYear = 9999;

/// The digits up to `separator`, or up to the end without one; takes both off `text`.
std::optional<unsigned> takeDigits(std::string_view& text, std::string_view separator) {
  unsigned number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{}) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  if (separator.empty() ? !text.empty() : !text.starts_with(separator)) return std::nullopt;
  text.remove_prefix(separator.size());
  return number;
}

std::optional<local_days> parseDate(std::string_view text) {
  const auto yearNumber = takeDigits(text, "-");
  const auto monthNumber = yearNumber ? takeDigits(text, "-") : std::nullopt;
  const auto dayNumber = monthNumber ? takeDigits(text, "") : std::nullopt;
  if (!dayNumber || *yearNumber > lastYear) return std::nullopt;
  const year_month_day date{year(static_cast<int>(*yearNumber)), month(*monthNumber),
                            day(*dayNumber)};
  return date.ok() ? std::optional(local_days(date)) : std::nullopt;
}

std::optional<minutes> parseTime(std::string_view text) {
  const auto hour = takeDigits(text, ":");
  const auto minute = hour ? takeDigits(text, "") : std::nullopt;
  if (!minute || *hour > 23 || *minute > 59) return std::nullopt;
  return hours(*hour) + minutes(*minute);
}

std::optional<minutes> parseOffset(std::string_view text) {
  if (!text.starts_with('+') && !text.starts_with('-')) return std::nullopt;
  const auto distance = parseTime(text.substr(1));
  if (!distance) return std::nullopt;
  return text.front() == '-' ? -*distance : *distance;
}

template <class T>
T take(ScenarioWords& words, std::string_view what, std::optional<T> (*parse)(std::string_view)) {
  const auto word = words.take(what);
  const auto value = parse(word);
  if (!value) throw ScenarioError(0, "« " + word + " » n'est pas " + std::string(what));
  return *value;
}

}  // namespace

ScenarioDay takeDay(ScenarioWords& words) {
  if (words.takeIf("yesterday")) return days(-1);
  if (words.takeIf("today")) return days(0);
  if (words.takeIf("tomorrow")) return days(1);
  return takeDate(words);
}

local_days takeDate(ScenarioWords& words) {
  return take(words, "une date comme 2026-11-18", parseDate);
}

minutes takeTimeOfDay(ScenarioWords& words) {
  return take(words, "une heure comme 09:00", parseTime);
}

minutes takeOffset(ScenarioWords& words) {
  return take(words, "un décalage comme +01:00", parseOffset);
}

local_days resolve(const ScenarioDay& day, const SimUserCalendar& calendar) {
  if (const auto* date = std::get_if<local_days>(&day)) return *date;
  return floor<days>(calendar.timeZone().localTime(calendar.now())) + std::get<days>(day);
}

}  // namespace valdrix::sim
