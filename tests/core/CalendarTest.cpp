// What no scenario can show of the calendar: answers that come from elsewhere.

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "calendar/CalendarService.h"
#include "preferences/PreferenceDefaults.h"
#include "sim/SimDesktop.h"

namespace valdrix {
namespace {

using platform::Event;
using platform::EventAuthorization;

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
