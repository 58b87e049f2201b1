// The simulated services that no scenario uses yet keep their ports' contracts.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "sim/ManualRunLoop.h"
#include "sim/SimEventStore.h"
#include "sim/SimLoginItem.h"
#include "sim/SimUrlSession.h"
#include "sim/SimWorkspace.h"

namespace valdrix::sim {
namespace {

TEST(SimEventStore, GivesToThoseWhoMayReadOnceTheUserHasAnswered) {
  using platform::Instant;
  Trace trace;
  ManualRunLoop runLoop(trace);
  SimEventStore store(trace, runLoop);
  int changes = 0;
  const Token token = store.observeChanges([&] { ++changes; });
  store.addCalendar({.calendarIdentifier = "home", .title = "Home"});
  store.addEvent({.title = "event", .endDate = Instant(std::chrono::hours(1))}, "home");
  runLoop.runPending();
  EXPECT_EQ(changes, 1);
  const auto count = [&] { return store.events(Instant(), Instant::max(), {"home"}).size(); };
  EXPECT_EQ(count(), 0U) << "nobody has asked the user";
  bool isGranted = false;
  store.requestFullAccessToEvents([&](bool granted) { isGranted = granted; });
  EXPECT_FALSE(isGranted);
  runLoop.runPending();
  EXPECT_TRUE(isGranted);
  EXPECT_EQ(count(), 1U);
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
