// What no scenario can show of the calendar: texts by the table, answers that come from
// elsewhere.

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "calendar/CalendarService.h"
#include "calendar/DayGroup.h"
#include "calendar/FrenchLocale.h"
#include "preferences/PreferenceDefaults.h"
#include "sim/SimDesktop.h"

namespace valdrix {
namespace {

using platform::Event;
using platform::EventAuthorization;
using namespace std::chrono;

TEST(FrenchLocale, NamesDaysAndMonths) {
  const struct {
    platform::DateFields fields;
    const char* text;
  } rows[]{
      {{.month = 1, .day = 1, .weekday = 0, .hour = 0, .minute = 0}, "lundi 1 janvier 00:00"},
      {{.month = 2, .day = 29, .weekday = 1, .hour = 9, .minute = 5}, "mardi 29 février 09:05"},
      {{.month = 8, .day = 15, .weekday = 5, .hour = 12, .minute = 0}, "samedi 15 août 12:00"},
      {{.month = 12, .day = 31, .weekday = 6, .hour = 23, .minute = 59},
       "dimanche 31 décembre 23:59"},
  };
  for (const auto& [fields, text] : rows)
    EXPECT_EQ(frenchLocale.dayText(fields) + ' ' + frenchLocale.timeText(fields), text);
}

TEST(DayGroups, KeepTheOrderOfWhatStartsTogether) {
  sim::SimDesktop desktop;
  const auto now = desktop.userCalendar.now();
  const auto groups = groupEventsByDay({{.title = "b", .startDate = now},
                                        {.title = "tomorrow", .startDate = now + days(1)},
                                        {.title = "a", .startDate = now},
                                        {.title = "early", .startDate = now - hours(1)}},
                                       desktop.userCalendar);
  ASSERT_EQ(groups.size(), 2U);
  std::string titles;
  for (const auto& event : groups[0].events) titles += *event.title + ' ';
  EXPECT_EQ(titles, "early b a ");
}

/// Answers when, and on which thread, the test does.
class AskedStore final : public platform::EventStore {
 public:
  [[nodiscard]] EventAuthorization authorizationStatus() const override { return status; }
  void requestFullAccessToEvents(std::function<void(bool)> completion) override {
    answer = std::move(completion);
  }
  [[nodiscard]] std::vector<platform::EventCalendar> calendars() const override {
    return {{"1", "zoo"}, {"2", "École"}, {"3", "ecole"}, {"4", "Zoo"}, {"5", "avion"}};
  }
  [[nodiscard]] std::vector<Event> events(platform::Instant start, platform::Instant,
                                          const std::vector<std::string>&) const override {
    return {{.title = "found", .startDate = start, .endDate = start}};
  }
  [[nodiscard]] Token observeChanges(std::function<void()>) override { return {}; }

  EventAuthorization status = EventAuthorization::notDetermined;
  std::function<void(bool)> answer;
};

class AskingService : public testing::Test {
 protected:
  AskingService() { registerPreferenceDefaults(desktop.userDefaults); }
  void answerFromElsewhere() {
    store.status = EventAuthorization::fullAccess;
    std::thread([this] { store.answer(true); }).join();
  }

  sim::SimDesktop desktop;
  AskedStore store;
  std::unique_ptr<CalendarService> service =
      std::make_unique<CalendarService>(CalendarService::Ports{.eventStore = store,
                                                               .collator = desktop.collator,
                                                               .userCalendar = desktop.userCalendar,
                                                               .runLoop = desktop.runLoop,
                                                               .userDefaults = desktop.userDefaults,
                                                               .workspace = desktop.workspace});
};

TEST_F(AskingService, GoesOnWithTheAnswerOnTheMainThread) {
  service->requestAccess();
  answerFromElsewhere();
  EXPECT_EQ(service->authStatus(), EventAuthorization::notDetermined);
  EXPECT_TRUE(service->availableCalendars().empty());
  desktop.runLoop.runPending();
  EXPECT_EQ(service->events().size(), 1U);
  std::string order;
  for (const auto& calendar : service->availableCalendars()) order += calendar.calendarIdentifier;
  EXPECT_EQ(order, "53214") << "by title, without regard to case; equals as the store has them";
}

TEST_F(AskingService, AnswerThatComesTooLateIsForNobody) {
  service->requestAccess();
  service.reset();
  answerFromElsewhere();
  desktop.runLoop.runPending();
  EXPECT_EQ(desktop.runLoop.timerCount(), 0U);
}

}  // namespace
}  // namespace valdrix
