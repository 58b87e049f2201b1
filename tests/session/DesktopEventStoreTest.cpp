// The user's permission between the sources of calendars and everybody else.

#include <gtest/gtest.h>
#include <optional>
#include <vector>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "desktop/calendar/DesktopEventStore.h"
#include "tests/session/FakeCalendarSource.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using platform::EventAuthorization;
using platform::Instant;
using tests::FakeCalendarSource;
using Reach = CalendarSource::Reach;
using Answer = AccessPrompt::Answer;

struct Prompt final : AccessPrompt {
  void ask(std::function<void(Answer)> onAnswer) override {
    ++questions;
    answer = std::move(onAnswer);
  }
  int questions = 0;
  std::function<void(Answer)> answer;
};

class DesktopEventStoreTest : public testing::Test {
 protected:
  void writeRecord(const QByteArray& text) const {
    QFile file(folder_.filePath("privacy.conf"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  [[nodiscard]] QByteArray record() const {
    QFile file(folder_.filePath("privacy.conf"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  DesktopEventStore& open(const std::vector<Reach>& reaches) {
    record_.emplace(folder_.filePath("privacy.conf").toStdString());
    DesktopEventStore::Sources sources;
    sources_.clear();
    for (const auto reach : reaches) {
      // One identifier is everybody's.
      auto source = std::make_unique<FakeCalendarSource>(
          reach, std::vector<platform::EventCalendar>{
                     {"shared", ""}, {"own" + std::to_string(sources_.size()), ""}});
      sources_.push_back(source.get());
      sources.push_back(std::move(source));
    }
    return store_.emplace(std::move(sources), *record_, prompt);
  }
  [[nodiscard]] const DesktopEventStore& store() const { return *store_; }

  QTemporaryDir folder_;
  Prompt prompt;
  std::vector<FakeCalendarSource*> sources_;
  std::optional<PrivacyRecord> record_;
  std::optional<DesktopEventStore> store_;
};

TEST_F(DesktopEventStoreTest, TheAnswerAndTheSystemDecideTogether) {
  const struct {
    const char* record;
    std::vector<Reach> reaches;
    EventAuthorization status;
  } rows[]{
      {"", {Reach::readable}, EventAuthorization::notDetermined},
      {"calendars=perhaps\n", {Reach::readable}, EventAuthorization::notDetermined},
      {"calendars=refused\n", {Reach::readable}, EventAuthorization::denied},
      {"calendars=allowed\n", {Reach::closed, Reach::readable}, EventAuthorization::fullAccess},
      {"calendars=allowed\n", {Reach::absent, Reach::absent}, EventAuthorization::fullAccess},
      {"calendars=allowed\n", {Reach::closed, Reach::writeOnly}, EventAuthorization::writeOnly},
      {"calendars=allowed\n", {Reach::absent, Reach::closed}, EventAuthorization::restricted},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.record) + std::to_string(static_cast<int>(row.status)));
    writeRecord(row.record);
    EXPECT_EQ(open(row.reaches).authorizationStatus(), row.status);
    const bool isFull = row.status == EventAuthorization::fullAccess;
    for (const auto* source : sources_) EXPECT_EQ(source->starts, isFull);
    EXPECT_EQ(store().calendars().empty(), !isFull);
    EXPECT_EQ(store().events({}, Instant::max(), {"shared"}).empty(), !isFull);
  }
  EXPECT_EQ(prompt.questions, 0);
}

TEST_F(DesktopEventStoreTest, IsAskedOnceForAllRequestsAndRemembered) {
  writeRecord("# kept\nother=1\nnonsense\n");
  auto& store = open({Reach::readable});
  std::vector<bool> granted;
  const auto note = [&](bool isGranted) { granted.push_back(isGranted); };
  store.requestFullAccessToEvents(note);
  prompt.answer(Answer::none);
  EXPECT_EQ(granted, std::vector<bool>{false});
  EXPECT_EQ(store.authorizationStatus(), EventAuthorization::notDetermined);

  store.requestFullAccessToEvents(note);
  store.requestFullAccessToEvents(note);
  EXPECT_EQ(sources_[0]->starts, 0);
  prompt.answer(Answer::allowed);
  EXPECT_EQ(granted, (std::vector<bool>{false, true, true}));
  EXPECT_EQ(sources_[0]->starts, 1);
  const int questions = prompt.questions;
  store.requestFullAccessToEvents(note);
  EXPECT_TRUE(granted.back());
  EXPECT_EQ(prompt.questions, questions) << "the answer is known";
  EXPECT_EQ(sources_[0]->starts, 1);
  EXPECT_TRUE(
      tests::waitFor([&] { return record().contains("# kept\nother=1\ncalendars=allowed\n"); }));
  EXPECT_EQ(QDir(folder_.path()).entryList({"*.broken-*"}).size(), 1);

  // Withdrawn by hand, while it runs.
  int changes = 0;
  const Token token = store.observeChanges([&] { ++changes; });
  writeRecord("calendars=refused\n");
  EXPECT_TRUE(tests::waitFor([&] { return changes > 0 && sources_[0]->stops == 1; }));
  EXPECT_TRUE(store.calendars().empty());
  store.requestFullAccessToEvents(note);
  EXPECT_FALSE(granted.back());
  EXPECT_EQ(prompt.questions, questions) << "a refusal is not asked again";
  writeRecord("calendars=allowed\n");
  EXPECT_TRUE(tests::waitFor([&] { return sources_[0]->starts == 2; }));
  EXPECT_FALSE(store.calendars().empty());
  EXPECT_EQ(sources_[0]->stops, 1);
}

TEST_F(DesktopEventStoreTest, SourcesAreOneListWithoutDoubles) {
  writeRecord("calendars=allowed\n");
  auto& store = open({Reach::readable, Reach::readable, Reach::absent});
  std::vector<std::string> identifiers;
  for (const auto& calendar : store.calendars()) identifiers.push_back(calendar.calendarIdentifier);
  EXPECT_EQ(identifiers,
            (std::vector<std::string>{"shared", "own0", "shared#2", "own1", "shared#2#2", "own2"}));
  const auto events = store.events({}, Instant::max(), {"shared#2", "own0", "unknown"});
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].calendar->calendarIdentifier, "own0");
  EXPECT_EQ(events[1].title, "shared") << "asked for by the source's own name";
  EXPECT_EQ(events[1].calendar->calendarIdentifier, "shared#2");
  EXPECT_TRUE(store.occurrenceNear("own1", Instant{}));
  EXPECT_FALSE(store.occurrenceNear("nobody", Instant{}));
  sources_[0]->far.startDate = Instant(std::chrono::days(100));
  EXPECT_TRUE(store.occurrenceNear("far", Instant{})) << "it could be listed";

  int changes = 0;
  const Token token = store.observeChanges([&] { ++changes; });
  for (const auto* source : sources_) source->changes.notify();
  EXPECT_EQ(changes, 3);
}

}  // namespace
}  // namespace valdrix::desktop
