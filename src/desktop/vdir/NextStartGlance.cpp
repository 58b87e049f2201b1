#include "desktop/vdir/NextStartGlance.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <chrono>

#include "desktop/vdir/VdirFile.h"

namespace valdrix::desktop {

using platform::Instant;
using std::chrono::days;

namespace {

/// More than any zone is away from UTC.
constexpr days zoneMargin{2};

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

/// The day that `text` begins with, as eight digits, and nothing but a time after them.
std::optional<Instant> parseDay(std::string_view text) {
  constexpr std::size_t digits = 8;
  unsigned number = 0;
  if (text.size() < digits || (text.size() > digits && text[digits] != 'T')) return std::nullopt;
  const auto [end, error] = std::from_chars(text.data(), text.data() + digits, number);
  if (error != std::errc() || end != text.data() + digits) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(number / 10000)),
                                         std::chrono::month(number / 100 % 100),
                                         std::chrono::day(number % 100)};
  if (!date.ok()) return std::nullopt;
  return Instant(std::chrono::sys_days(date));
}

class Glance {
 public:
  explicit Glance(Instant since) : since_(since) {}

  std::optional<Instant> at(std::string_view text) {
    bool wasRead = false;
    while (!text.empty() && isClear_) {
      const auto length = std::min(text.find('\n'), text.size());
      auto line = text.substr(0, length);
      text.remove_prefix(std::min(length + 1, text.size()));
      if (line.ends_with('\r')) line.remove_suffix(1);
      // Whatever goes on in the next line is more than a glance.
      const bool isContinuation = line.starts_with(' ') || line.starts_with('\t');
      if (isContinuation && wasRead) return std::nullopt;
      wasRead = !isContinuation && read(line);
    }
    return isClear_ && depth_ == 0 && hasEvent_ ? std::optional(next_) : std::nullopt;
  }

 private:
  struct Event {
    std::optional<Instant> start;
    std::optional<Instant> end;
    std::optional<Instant> until;
    bool recurs = false;
  };

  /// Whether the line says something that counts.
  bool read(std::string_view line) {
    constexpr std::string_view initials = "bBdDeErR";
    if (line.empty() || initials.find(line.front()) == initials.npos) return false;
    const auto name = line.substr(0, line.find_first_of(":;"));
    const auto value = line.substr(std::min(line.rfind(':') + 1, line.size()));
    if (equalsIgnoringCase(name, "BEGIN")) return begin(value), true;
    if (equalsIgnoringCase(name, "END")) return end(value), true;
    if (depth_ != eventDepth_) return false;
    if (equalsIgnoringCase(name, "DTSTART")) return readDay(value, event_.start);
    if (equalsIgnoringCase(name, "DTEND")) return readDay(value, event_.end);
    if (equalsIgnoringCase(name, "RRULE")) return readRule(value);
    for (const auto* const other : {"DURATION", "RDATE", "EXRULE", "RECURRENCE-ID"})
      if (equalsIgnoringCase(name, other)) isClear_ = false;
    return false;
  }

  void begin(std::string_view component) {
    ++depth_;
    if (!equalsIgnoringCase(component, "VEVENT")) return;
    isClear_ &= eventDepth_ == 0;
    eventDepth_ = depth_;
    event_ = {};
  }

  void end(std::string_view component) {
    const bool isEvent = equalsIgnoringCase(component, "VEVENT");
    isClear_ &= depth_ > 0 && isEvent == (depth_ == eventDepth_);
    if (isEvent) finish(), eventDepth_ = 0;
    --depth_;
  }

  bool readDay(std::string_view value, std::optional<Instant>& day) {
    isClear_ &= !day.has_value();
    day = parseDay(value);
    isClear_ &= day.has_value();
    return true;
  }

  bool readRule(std::string_view value) {
    constexpr std::string_view until = "UNTIL=";
    isClear_ &= !event_.recurs;
    event_.recurs = true;
    if (const auto at = value.find(until); at != value.npos) {
      const auto day = value.substr(at + until.size());
      event_.until = parseDay(day.substr(0, day.find(';')));
    }
    return true;
  }

  void finish() {
    hasEvent_ = true;
    if (!event_.start) isClear_ = false;
    if (!isClear_) return;
    const auto start = *event_.start;
    // Without an end it may be a whole day.
    const auto length = std::max<Instant::duration>(event_.end.value_or(start) - start, days(0));
    const bool hasLast = !event_.recurs || event_.until.has_value();
    // The start counts, also where the rule does not reach it.
    const auto last = std::max(event_.until.value_or(start), start);
    if (hasLast && last + length + days(1) + zoneMargin < since_) return;
    // When a rule that has begun goes on is for the parser to find out.
    if (event_.recurs && start - zoneMargin < since_) isClear_ = false;
    next_ = std::min<Instant>(next_, start - zoneMargin);
  }

  Instant since_;
  Instant next_ = VdirFile::never;
  Event event_;
  int depth_ = 0;
  int eventDepth_ = 0;  ///< of the event that is being read; 0 outside
  bool hasEvent_ = false;
  bool isClear_ = true;
};

}  // namespace

std::optional<Instant> glanceNextStart(std::string_view text, Instant since) {
  return Glance(since).at(text);
}

}  // namespace valdrix::desktop
