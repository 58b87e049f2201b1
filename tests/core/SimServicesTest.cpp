// The simulated services that no scenario uses yet keep their ports' contracts.

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "sim/ManualRunLoop.h"
#include "sim/SimEventStore.h"
#include "sim/SimLoginItem.h"
#include "sim/SimUrlSession.h"
#include "sim/SimWorkspace.h"

namespace valdrix::sim {
namespace {

using platform::Event;
using platform::EventAuthorization;
using platform::Instant;
using std::chrono::hours;

Event event(const char* title, hours start, hours end) {
  return {.title = title, .startDate = Instant(start), .endDate = Instant(end)};
}

TEST(SimEventStore, GivesWhatOverlapsToThoseWhoMayRead) {
  Trace trace;
  ManualRunLoop runLoop(trace);
  SimEventStore store(trace, runLoop);
  int changes = 0;
  const Token token = store.observeChanges([&] { ++changes; });
  store.addCalendar({.calendarIdentifier = "home", .title = "Home"});
  store.addCalendar({.calendarIdentifier = "work", .title = "Work"});
  store.addEvent(event("over", hours(8), hours(10)), "home");
  store.addEvent(event("in", hours(9), hours(11)), "home");
  store.addEvent(event("empty", hours(10), hours(10)), "home");
  store.addEvent(event("hidden", hours(11), hours(12)), "work");
  store.addEvent(event("late", hours(12), hours(13)), "home");
  runLoop.runPending();
  EXPECT_EQ(changes, 1);

  const auto titles = [&] {
    std::vector<std::string> found;
    for (const auto& match : store.events(Instant(hours(10)), Instant(hours(12)), {"home"}))
      found.push_back(*match.title);
    return found;
  };
  EXPECT_EQ(titles(), std::vector<std::string>{}) << "nobody has asked the user";
  std::optional<bool> granted;
  store.requestFullAccessToEvents([&](bool isGranted) { granted = isGranted; });
  EXPECT_FALSE(granted.has_value());
  runLoop.runPending();
  EXPECT_EQ(granted, true);
  EXPECT_EQ(titles(), (std::vector<std::string>{"in", "empty"}));
  EXPECT_TRUE(store.events(Instant(hours(10)), Instant(hours(12)), {}).empty());
}

TEST(SimEventStore, RefusalIsNotAskedAgain) {
  Trace trace;
  ManualRunLoop runLoop(trace);
  SimEventStore store(trace, runLoop);
  store.setAnswer(false);
  for (const bool willGrant : {true, true}) {
    store.requestFullAccessToEvents([](bool isGranted) { EXPECT_FALSE(isGranted); });
    runLoop.runPending();
    store.setAnswer(willGrant);
  }
  EXPECT_EQ(store.authorizationStatus(), EventAuthorization::denied);
}

TEST(SimUrlSession, AnswersInTimeOrFails) {
  Trace trace;
  ManualRunLoop runLoop(trace);
  SimUrlSession session(trace, runLoop);
  session.setAnswer("https://quick", {.statusCode = 200, .body = "1.0"}, 2);
  session.setAnswer("https://slow", {.statusCode = 200}, 9);
  std::vector<std::string> got;
  const auto ask = [&](const std::string& url) {
    return session.data({.url = url}, [&got, url](const auto& response) {
      got.push_back(url + (response ? " " + response->body : " failed"));
    });
  };
  const Token tokens[] = {ask("https://quick"), ask("https://slow"), ask("https://nowhere")};
  ask("https://quick").reset();
  runLoop.advance(8);
  EXPECT_EQ(got, (std::vector<std::string>{"https://nowhere failed", "https://quick 1.0",
                                           "https://slow failed"}));
}

TEST(SimLoginItem, ShowsWhatTheDesktopMadeOfIt) {
  Trace trace;
  SimLoginItem item(trace);
  item.setStatusWhenRegistered(SimLoginItem::Status::requiresApproval);
  EXPECT_TRUE(item.registerAtLogin());
  EXPECT_EQ(item.status(), SimLoginItem::Status::requiresApproval);
  item.setRefusing(true);
  EXPECT_FALSE(item.unregisterAtLogin());
  EXPECT_EQ(item.status(), SimLoginItem::Status::requiresApproval);
}

TEST(SimWorkspace, AsksNobodyForWhatIsNoUrl) {
  Trace trace;
  SimWorkspace workspace(trace);
  EXPECT_TRUE(workspace.open("ical://ekevent/a b"));
  for (const char* text : {"", "no url", ":1", "http://a b", "ical://ekevent/a\nb", "a:\x7F"})
    EXPECT_FALSE(workspace.open(text));
}

}  // namespace
}  // namespace valdrix::sim
