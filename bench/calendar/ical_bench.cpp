#include <benchmark/benchmark.h>
#include <libical/ical.h>
#include <string>
#include <string_view>

#include "desktop/icalendar/IcalendarText.h"

// What reading one event's file costs, beside libical's own parser on the same text, which is where
// every program that reads calendars with it begins.

namespace {

using namespace valdrix;
using namespace std::chrono_literals;
using desktop::IcalendarText;

constexpr platform::Instant now = std::chrono::sys_days(std::chrono::year(2026) / 11 / 23) + 9h;

const QTimeZone& local() {
  static const QTimeZone zone("Europe/Paris");
  return zone;
}

/// As calendar programs write it: with its zone, people, an alarm and a text.
std::string text(std::string_view start, std::string_view rule) {
  std::string text = R"(BEGIN:VCALENDAR
VERSION:2.0
PRODID:-//Example//EN
BEGIN:VTIMEZONE
TZID:Europe/Paris
BEGIN:DAYLIGHT
DTSTART:19810329T020000
RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU
TZNAME:CEST
TZOFFSETFROM:+0100
TZOFFSETTO:+0200
END:DAYLIGHT
BEGIN:STANDARD
DTSTART:19961027T030000
RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU
TZNAME:CET
TZOFFSETFROM:+0200
TZOFFSETTO:+0100
END:STANDARD
END:VTIMEZONE
BEGIN:VEVENT
UID:5f2b1a1e-9a3c-4f6b-8f6e-2d1f3c4b5a69
DTSTAMP:20260101T080000Z
CREATED:20260101T080000Z
LAST-MODIFIED:20260102T080000Z
SUMMARY:Réunion d'équipe
LOCATION:Salle 4
DESCRIPTION:Ordre du jour\, comptes\, puis questions diverses de chacun et
  de tous ceux qui voudront bien venir.
ORGANIZER;CN=Marie Dupont:mailto:marie@example.org
ATTENDEE;CN=Jean Martin;PARTSTAT=ACCEPTED:mailto:jean@example.org
DTSTART;TZID=Europe/Paris:)";
  text.append(start).append("T100000\nDURATION:PT1H\n").append(rule);
  text += R"(BEGIN:VALARM
ACTION:DISPLAY
TRIGGER:-PT15M
DESCRIPTION:Rappel
END:VALARM
END:VEVENT
END:VCALENDAR
)";
  return text;
}

std::string single() { return text("20261124", ""); }
std::string daily() { return text("19700105", "RRULE:FREQ=DAILY\n"); }
std::string lastWorkday() {
  return text("20200131", "RRULE:FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1\n");
}

void libicalParse(benchmark::State& state, const std::string& ical) {
  for ([[maybe_unused]] auto round : state) {
    icalcomponent* component = icalparser_parse_string(ical.c_str());
    benchmark::DoNotOptimize(component);
    icalcomponent_free(component);
  }
}

void parse(benchmark::State& state, const std::string& ical) {
  for ([[maybe_unused]] auto round : state) benchmark::DoNotOptimize(IcalendarText::parse(ical));
}

/// What the index of a folder asks of each file.
void parseAndNextStart(benchmark::State& state, const std::string& ical) {
  for ([[maybe_unused]] auto round : state)
    benchmark::DoNotOptimize(IcalendarText::parse(ical).nextStart(now, local()));
}

void nextStart(benchmark::State& state, const std::string& ical) {
  const auto calendar = IcalendarText::parse(ical);
  for ([[maybe_unused]] auto round : state)
    benchmark::DoNotOptimize(calendar.nextStart(now, local()));
}

void occurrencesOfAWeek(benchmark::State& state, const std::string& ical) {
  const auto calendar = IcalendarText::parse(ical);
  for ([[maybe_unused]] auto round : state)
    benchmark::DoNotOptimize(calendar.occurrences(now, now + 7 * 24h, local()));
}

BENCHMARK_CAPTURE(libicalParse, one event, single());
BENCHMARK_CAPTURE(parse, one event, single());
BENCHMARK_CAPTURE(parseAndNextStart, one event, single());
BENCHMARK_CAPTURE(parseAndNextStart, daily since 1970, daily());
BENCHMARK_CAPTURE(parseAndNextStart, last workday, lastWorkday());
BENCHMARK_CAPTURE(nextStart, daily since 1970, daily());
BENCHMARK_CAPTURE(occurrencesOfAWeek, one event, single());
BENCHMARK_CAPTURE(occurrencesOfAWeek, daily since 1970, daily());
BENCHMARK_CAPTURE(occurrencesOfAWeek, last workday, lastWorkday());

}  // namespace

BENCHMARK_MAIN();
