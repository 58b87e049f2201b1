#include "desktop/icalendar/IcalReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "desktop/icalendar/IcalContentLines.h"
#include "desktop/icalendar/IcalTimezones.h"

namespace valdrix::desktop {

namespace {

constexpr std::size_t maximumEvents = 250'000;
/// Of one kind in one event.
constexpr std::size_t maximumListed = 20'000;
constexpr std::size_t maximumRules = 16;
constexpr std::size_t maximumTitleSize = 4096;
constexpr std::size_t maximumUidSize = 65'536;

/// What may hold events or stands beside them, so that an event before it has ended.
bool isTopLevel(std::string_view component) {
  constexpr std::array<std::string_view, 6> names{"VCALENDAR", "VEVENT",    "VTODO",
                                                  "VJOURNAL",  "VFREEBUSY", "VTIMEZONE"};
  return std::ranges::any_of(names, [&](auto name) { return isSameWord(component, name); });
}

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// Reads the lines of one VEVENT.
class EventReader {
 public:
  EventReader(IcalTimezones& zones, Interruption& interruption)
      : zones_(zones), interruption_(interruption) {}

  void read(const IcalContentLine& line);
  /// Nothing when the event has no start.
  std::optional<IcalEvent> finish();

 private:
  /// What a line's parameters say of all times in it.
  struct Frame {
    bool isDate = false;
    std::shared_ptr<const CalendarZone> zone{};
  };

  [[nodiscard]] Frame frameOf(const IcalContentLine& line);
  [[nodiscard]] static std::optional<IcalTime> time(const Frame& frame, std::string_view value);
  [[nodiscard]] std::optional<IcalTime> time(const IcalContentLine& line);
  [[nodiscard]] IcalRecurrence& recurrence();
  /// For every value of a list, as one line may be the whole text.
  [[nodiscard]] bool isInterrupted() { return interruption_.isDueAfter(5); }
  void readText(const IcalContentLine& line);
  void readRecurrence(const IcalContentLine& line);
  void addAdditions(const IcalContentLine& line);

  IcalTimezones& zones_;
  Interruption& interruption_;
  IcalEvent event_;
  bool hasStart_ = false;
};

void EventReader::read(const IcalContentLine& line) {
  if (line.name.size() < 3) return;
  // Most lines are of no interest and end here.
  switch (line.name.front() | 0x20) {
    case 'd':
      if (line.is("DTSTART")) {
        const auto start = time(line);
        if (start) event_.start = *start;
        hasStart_ = start.has_value();
      } else if (line.is("DTEND")) {
        event_.extent.end = time(line);
      } else if (line.is("DURATION")) {
        event_.extent.duration = parseDuration(trimmed(line.value));
      }
      return;
    case 's':
    case 'u':
      return readText(line);
    case 'r':
    case 'e':
      return readRecurrence(line);
    default:
      return;
  }
}

std::optional<IcalEvent> EventReader::finish() {
  if (!hasStart_) return std::nullopt;
  return std::move(event_);
}

EventReader::Frame EventReader::frameOf(const IcalContentLine& line) {
  const auto kind = line.parameter("VALUE");
  const auto tzid = line.parameter("TZID");
  return {.isDate = kind && isSameWord(*kind, "DATE"), .zone = tzid ? zones_.find(*tzid) : nullptr};
}

std::optional<IcalTime> EventReader::time(const Frame& frame, std::string_view value) {
  const auto written = parseDateTime(trimmed(value));
  if (!written) return std::nullopt;
  if (written->isDate || frame.isDate)
    return IcalTime{.wall = std::chrono::floor<std::chrono::days>(written->wall), .isDate = true};
  return IcalTime{.wall = written->wall, .zone = written->isUtc ? CalendarZone::utc() : frame.zone};
}

std::optional<IcalTime> EventReader::time(const IcalContentLine& line) {
  return time(frameOf(line), line.value);
}

IcalRecurrence& EventReader::recurrence() {
  if (!event_.recurrence) event_.recurrence = std::make_unique<IcalRecurrence>();
  return *event_.recurrence;
}

void EventReader::readText(const IcalContentLine& line) {
  if (line.is("SUMMARY")) {
    std::string title = parseText(line.value, maximumTitleSize);
    event_.title = isBlank(title) ? std::nullopt : std::optional(std::move(title));
  } else if (line.is("UID") && line.value.size() <= maximumUidSize) {
    std::string uid = parseText(trimmed(line.value), maximumUidSize);
    event_.uid = uid.empty() ? std::nullopt : std::optional(std::move(uid));
  } else if (line.is("STATUS")) {
    event_.isCancelled = isSameWord(trimmed(line.value), "CANCELLED");
  } else if (line.is("SEQUENCE")) {
    const std::string_view digits = trimmed(line.value);
    std::from_chars(digits.data(), digits.data() + digits.size(), event_.sequence);
  }
}

void EventReader::readRecurrence(const IcalContentLine& line) {
  if (line.is("RECURRENCE-ID")) {
    event_.recurrenceId = time(line);
    const auto range = line.parameter("RANGE");
    event_.isThisAndFuture = range && isSameWord(*range, "THISANDFUTURE");
  } else if (line.is("RRULE")) {
    if (recurrence().rules.size() >= maximumRules) return;
    if (auto rule = RecurrenceRule::parse(trimmed(line.value)))
      recurrence().rules.push_back(std::move(*rule));
  } else if (line.is("RDATE")) {
    addAdditions(line);
  } else if (line.is("EXDATE")) {
    if (recurrence().exceptions.size() >= maximumListed) return;
    const Frame frame = frameOf(line);
    IcalList values(line.value);
    while (const auto value = values.next()) {
      if (recurrence().exceptions.size() >= maximumListed || isInterrupted()) return;
      if (auto exception = time(frame, *value)) recurrence().exceptions.push_back(*exception);
    }
  }
}

void EventReader::addAdditions(const IcalContentLine& line) {
  if (recurrence().additions.size() >= maximumListed) return;
  const Frame frame = frameOf(line);
  IcalList values(line.value);
  while (const auto value = values.next()) {
    if (recurrence().additions.size() >= maximumListed || isInterrupted()) return;
    const std::size_t slash = std::min(value->find('/'), value->size());
    const auto start = time(frame, value->substr(0, slash));
    if (!start) continue;
    IcalAdditionalStart addition{.start = *start};
    if (slash < value->size()) {
      addition.extent.end = time(frame, value->substr(slash + 1));
      addition.extent.duration = parseDuration(trimmed(value->substr(slash + 1)));
    }
    recurrence().additions.push_back(std::move(addition));
  }
}

/// Follows the components of a text.
class TextReader {
 public:
  TextReader(std::string_view text, Interruption& interruption)
      : text_(text), lines_(text), zones_(interruption), interruption_(interruption) {
    zones_.enter(text);
  }

  std::vector<IcalEvent> read();

 private:
  void begin(std::string_view component);
  void end(std::string_view component);
  void finishEvent();

  std::string_view text_;
  IcalContentLines lines_;
  IcalTimezones zones_;
  Interruption& interruption_;
  std::vector<IcalEvent> events_;
  std::optional<EventReader> event_;
  /// How deep inside the event's own parts, such as its alarms; their lines are not the event's.
  std::size_t depth_ = 0;
};

std::vector<IcalEvent> TextReader::read() {
  while (events_.size() < maximumEvents) {
    const std::size_t position = lines_.position();
    const auto line = lines_.next();
    // A byte costs a step at most.
    const auto steps = static_cast<std::int64_t>(lines_.position() - position);
    if (!line || interruption_.isDueAfter(steps)) break;
    if (line->is("BEGIN")) {
      begin(trimmed(line->value));
    } else if (line->is("END")) {
      end(trimmed(line->value));
    } else if (event_ && depth_ == 0) {
      event_->read(*line);
    }
  }
  finishEvent();
  return std::move(events_);
}

void TextReader::begin(std::string_view component) {
  if (event_ && !isTopLevel(component)) {
    ++depth_;
    return;
  }
  finishEvent();
  if (isSameWord(component, "VEVENT")) event_.emplace(zones_, interruption_);
  // Zones are known within their calendar.
  if (isSameWord(component, "VCALENDAR")) zones_.enter(text_.substr(lines_.position()));
}

void TextReader::end(std::string_view component) {
  if (isTopLevel(component)) return finishEvent();
  if (depth_ > 0) --depth_;
}

void TextReader::finishEvent() {
  depth_ = 0;
  if (!event_) return;
  if (auto event = event_->finish()) events_.push_back(std::move(*event));
  event_.reset();
}

}  // namespace

std::vector<IcalEvent> readIcalEvents(std::string_view text, Interruption& interruption) {
  return TextReader(text, interruption).read();
}

}  // namespace valdrix::desktop
