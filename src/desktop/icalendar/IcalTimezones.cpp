#include "desktop/icalendar/IcalTimezones.h"

#include <optional>
#include <utility>
#include <vector>

#include "desktop/icalendar/IcalContentLines.h"
#include "desktop/icalendar/RecurrenceRule.h"

namespace valdrix::desktop {

namespace {

/// More than there are zones. Asking the system for one that it does not know takes it some time.
constexpr std::size_t maximumNames = 1000;
constexpr std::size_t maximumDefinitions = 256;
constexpr std::size_t maximumChanges = 4096;
constexpr std::int64_t stepsPerLine = 50;

/// A STANDARD or DAYLIGHT part: from when on clocks show another time.
struct Observance {
  std::optional<IcalDateTime> start{};
  std::optional<std::chrono::seconds> before{};
  std::optional<std::chrono::seconds> after{};
  std::vector<RecurrenceRule> rules{};
  std::vector<WallTime> additions{};
};

/// A VTIMEZONE as it is read.
struct Definition {
  std::string tzid;
  std::string location;  ///< a name that libical's writers add
  std::vector<CalendarZone::Change> changes{};
  bool isTooCostly = false;
};

/// Whether the budget sufficed.
bool addChanges(const Observance& part, WorkBudget& budget,
                std::vector<CalendarZone::Change>& changes) {
  if (!part.start || !part.before || !part.after) return true;
  const auto add = [&](WallTime wall) {
    const std::chrono::sys_seconds at(wall.time_since_epoch() - *part.before);
    changes.push_back({.at = at, .before = *part.before, .after = *part.after});
    return changes.size() < maximumChanges;
  };
  // Many definitions begin in 1601; what was before 1960 matters to nobody's panel.
  constexpr auto year = [](int number) {
    return std::chrono::local_days(std::chrono::year(number) / 1 / 1);
  };
  for (const RecurrenceRule& rule : part.rules)
    if (rule.walk(part.start->wall, false, CalendarZone(*part.before),
                  {.from = year(1960), .to = year(2200)}, budget, add) == WalkEnd::tooCostly)
      return false;
  if (part.rules.empty() && !add(part.start->wall)) return true;
  for (const WallTime addition : part.additions)
    if (!add(addition)) break;
  return true;
}

void read(const IcalContentLine& line, Observance& part) {
  constexpr std::size_t maximumRules = 8;
  if (line.is("DTSTART")) part.start = parseDateTime(line.value);
  if (line.is("TZOFFSETFROM")) part.before = parseUtcOffset(line.value);
  if (line.is("TZOFFSETTO")) part.after = parseUtcOffset(line.value);
  if (line.is("RRULE") && part.rules.size() < maximumRules)
    if (auto rule = RecurrenceRule::parse(line.value)) part.rules.push_back(std::move(*rule));
  if (!line.is("RDATE")) return;
  IcalList values(line.value);
  while (const auto value = values.next())
    if (const auto time = parseDateTime(*value); time && part.additions.size() < maximumChanges)
      part.additions.push_back(time->wall);
}

/// Reads up to the definition's end.
Definition readDefinition(IcalContentLines& lines, WorkBudget& budget) {
  Definition definition;
  Observance part;
  while (const auto line = lines.next()) {
    const bool isBegin = line->is("BEGIN");
    const bool isEnd = line->is("END");
    const bool isPart = isSameWord(line->value, "STANDARD") || isSameWord(line->value, "DAYLIGHT");
    if ((isBegin || isEnd) && !isPart) break;
    if (isEnd && !addChanges(part, budget, definition.changes)) definition.isTooCostly = true;
    if (isBegin || isEnd) part = {};
    if (line->is("TZID")) definition.tzid = line->value;
    if (line->is("X-LIC-LOCATION")) definition.location = line->value;
    read(*line, part);
  }
  return definition;
}

}  // namespace

void IcalTimezones::enter(std::string_view calendar) {
  calendar_ = calendar;
  areDefinitionsRead_ = false;
  definitions_.clear();
}

std::shared_ptr<const CalendarZone> IcalTimezones::find(std::string_view tzid) {
  if (auto zone = knownToSystem(tzid)) return zone;
  readDefinitions();
  const auto defined = definitions_.find(tzid);
  return defined == definitions_.end() ? nullptr : defined->second;
}

std::shared_ptr<const CalendarZone> IcalTimezones::knownToSystem(std::string_view name) {
  constexpr std::int64_t stepsPerName = 2000;
  if (const auto known = names_.find(name); known != names_.end()) return known->second;
  if (names_.size() >= maximumNames || interruption_.isDueAfter(stepsPerName)) return nullptr;
  return names_.emplace(name, CalendarZone::named(name)).first->second;
}

void IcalTimezones::readDefinitions() {
  if (std::exchange(areDefinitionsRead_, true)) return;
  IcalContentLines lines(calendar_);
  while (const auto line = lines.next()) {
    const bool isBegin = line->is("BEGIN");
    const bool isNextCalendar = isBegin && isSameWord(line->value, "VCALENDAR");
    const bool isEnd = isNextCalendar || definitions_.size() >= maximumDefinitions;
    if (isEnd || interruption_.isDueAfter(stepsPerLine)) return;
    if (!isBegin || !isSameWord(line->value, "VTIMEZONE")) continue;
    Definition definition = readDefinition(lines, budget_);
    auto zone = knownToSystem(definition.location);
    if (!zone && !definition.changes.empty() && !definition.isTooCostly)
      zone = std::make_shared<const CalendarZone>(std::move(definition.changes));
    if (zone) definitions_.emplace(std::move(definition.tzid), std::move(zone));
  }
}

}  // namespace valdrix::desktop
