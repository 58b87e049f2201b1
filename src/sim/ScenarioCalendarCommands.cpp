#include "sim/ScenarioCalendarCommands.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <utility>

#include "sim/ScenarioDates.h"
#include "sim/ScenarioError.h"
#include "sim/ScenarioPlayer.h"

namespace valdrix::sim {

namespace {

using Action = Scenario::Action;
using LocalTime = SimTimeZone::LocalTime;
using platform::EventAuthorization;
using platform::Instant;
using std::chrono::days;

constexpr unsigned mostDays = 1000;

Action parseDate(ScenarioWords& words) {
  const auto day = takeDay(words);
  const auto time = takeTimeOfDay(words);
  return [day, time](ScenarioPlayer& player) {
    SimUserCalendar& calendar = player.desktop().userCalendar;
    calendar.setNow(calendar.timeZone().instantAt(resolve(day, calendar) + time));
  };
}

Action parseZone(ScenarioWords& words) {
  const auto offset = takeOffset(words);
  std::vector<SimTimeZone::Change> changes;
  while (words.takeIf("then")) {
    const auto next = takeOffset(words);
    if (!words.takeIf("since")) fail("il manque since");
    const auto day = takeDate(words);
    const Instant at((day + takeTimeOfDay(words)).time_since_epoch());
    if (!changes.empty() && at <= changes.back().at) fail("ce changement vient trop tôt");
    changes.push_back({at, next});
  }
  return [zone = SimTimeZone(offset, std::move(changes))](ScenarioPlayer& player) {
    player.desktop().userCalendar.setTimeZone(zone);
  };
}

view::Color takeColor(ScenarioWords& words) {
  constexpr std::string_view what = "une couleur comme ff9500";
  const auto word = words.take(what);
  unsigned value = 0;
  const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), value, 16);
  if (error != std::errc{} || stop != word.data() + word.size() || word.size() != 6)
    fail("« " + word + " » n'est pas " + std::string(what));
  const auto channel = [value](unsigned shift) { return ((value >> shift) & 0xFF) / 255.0; };
  return {channel(16), channel(8), channel(0)};
}

Action parseCalendar(ScenarioWords& words) {
  const bool isRemoval = words.takeChoice({"add", "remove"}) == 1;
  const auto identifier = words.take("l'identifiant du calendrier");
  if (isRemoval)
    return [identifier](ScenarioPlayer& player) {
      if (!player.desktop().eventStore.removeCalendar(identifier))
        fail("aucun calendrier « " + identifier + " »");
    };
  platform::EventCalendar calendar{.calendarIdentifier = identifier, .title = identifier};
  while (!words.isEmpty()) {
    switch (words.takeChoice({"title", "color", "account"})) {
      case 0:
        calendar.title = words.take("un titre");
        break;
      case 1:
        calendar.color = takeColor(words);
        break;
      default:
        calendar.sourceTitle = words.take("le nom d'un compte");
        break;
    }
  }
  return [calendar](ScenarioPlayer& player) { player.desktop().eventStore.addCalendar(calendar); };
}

/// An event whose times are still to be found in the time zone of the moment at which it is added.
struct NewEvent {
  platform::Event event;
  std::string calendarIdentifier;
  ScenarioDay startDay;
  /// Without one the event begins with the day.
  std::optional<std::chrono::minutes> startTime{};
  std::optional<ScenarioDay> endDay{};
  std::chrono::minutes endTime{};
  /// How many days an event takes that takes whole ones.
  int dayCount = 1;
};

/// TIME until [DAY] TIME, or all-day.
void takeTimes(ScenarioWords& words, NewEvent& added) {
  added.event.isAllDay = words.takeIf("all-day");
  if (added.event.isAllDay) return;
  added.startTime = takeTimeOfDay(words);
  if (!words.takeIf("until")) fail("il manque until");
  if (words.takeIf("on")) added.endDay = takeDay(words);
  added.endTime = takeTimeOfDay(words);
}

void takeEventOptions(ScenarioWords& words, NewEvent& added) {
  while (!words.isEmpty()) {
    switch (words.takeChoice({"title", "recurring", "without-identifier", "days"})) {
      case 0:
        added.event.title = words.take("un titre");
        break;
      case 1:
        added.event.hasRecurrenceRules = true;
        break;
      case 2:
        added.event.eventIdentifier.reset();
        break;
      default:
        if (!added.event.isAllDay) fail("days ne va qu'avec all-day");
        added.dayCount =
            static_cast<int>(words.takeInteger("un nombre de jours de 1 à 1000", 1, mostDays));
        break;
    }
  }
}

void add(const NewEvent& added, SimDesktop& desktop) {
  const SimTimeZone& zone = desktop.userCalendar.timeZone();
  const auto startDay = resolve(added.startDay, desktop.userCalendar);
  platform::Event event = added.event;
  event.startDate = zone.instantAt(startDay + added.startTime.value_or(std::chrono::minutes(0)));
  event.endDate = zone.instantAt(startDay + days(added.dayCount));
  if (added.startTime) {
    const auto endDay = added.endDay ? resolve(*added.endDay, desktop.userCalendar) : startDay;
    event.endDate = zone.instantAt(endDay + added.endTime);
  }
  if (event.endDate < event.startDate) fail("cet événement finit avant de commencer");
  if (!desktop.eventStore.addEvent(event, added.calendarIdentifier))
    fail("aucun calendrier « " + added.calendarIdentifier + " »");
}

Action parseEvent(ScenarioWords& words) {
  const bool isRemoval = words.takeChoice({"add", "remove"}) == 1;
  const auto identifier = words.take("l'identifiant de l'événement");
  if (isRemoval)
    return [identifier](ScenarioPlayer& player) {
      if (!player.desktop().eventStore.removeEvent(identifier))
        fail("aucun événement « " + identifier + " »");
    };
  NewEvent added{.event = {.eventIdentifier = identifier},
                 .calendarIdentifier = words.take("l'identifiant du calendrier"),
                 .startDay = takeDay(words)};
  takeTimes(words, added);
  takeEventOptions(words, added);
  return [added](ScenarioPlayer& player) { add(added, player.desktop()); };
}

Action parseAccess(ScenarioWords& words) {
  constexpr std::array statuses{EventAuthorization::notDetermined, EventAuthorization::restricted,
                                EventAuthorization::denied, EventAuthorization::fullAccess,
                                EventAuthorization::writeOnly};
  const auto status = statuses.at(
      words.takeChoice({"notDetermined", "restricted", "denied", "fullAccess", "writeOnly"}));
  return [status](ScenarioPlayer& player) {
    player.desktop().eventStore.setAuthorizationStatus(status);
  };
}

Action parseRequestAccess(ScenarioWords& words) {
  const bool isGranted = words.takeChoice({"granted", "refused"}) == 0;
  return [isGranted](ScenarioPlayer& player) {
    player.desktop().eventStore.setAnswer(isGranted);
    player.app().appDelegate().calendarService().requestAccess();
  };
}

constexpr auto calendarCommands = std::to_array<ScenarioCommand>({
    {"access", parseAccess},
    {"calendar", parseCalendar},
    {"date", parseDate},
    {"event", parseEvent},
    {"request-access", parseRequestAccess},
    {"zone", parseZone},
});

}  // namespace

std::span<const ScenarioCommand> scenarioCalendarCommands() { return calendarCommands; }

}  // namespace valdrix::sim
