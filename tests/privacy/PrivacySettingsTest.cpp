// What the user reads and does where access is given and withdrawn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <QTemporaryDir>

#include "desktop/calendar/DesktopEventStore.h"
#include "desktop/keys/MediaKeyTaps.h"
#include "desktop/privacy/CalendarAccessTab.h"
#include "desktop/privacy/KeyAccessTab.h"
#include "desktop/privacy/KeyLossNotice.h"
#include "desktop/privacy/PrivacySettings.h"
#include "desktop/session/QtRunLoop.h"
#include "sim/ManualRunLoop.h"
#include "tests/session/FakeCalendarSource.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using platform::EventAuthorization;
using testing::HasSubstr;
using tests::waitFor;
using Lines = std::vector<std::string>;

/// The rows of a form as "title: value", after the header of their section.
Lines lines(const view::TabView& tab) {
  Lines all;
  const auto form = std::get<view::Form>(tab.body());
  for (const auto& section : form.sections) {
    all.push_back('[' + section.header + ']');
    for (const auto& row : section.rows) {
      if (const auto* const labeled = std::get_if<view::LabeledRow>(&row.content))
        all.push_back(labeled->title + ": " + std::get<view::ValueText>(labeled->content).text);
      if (const auto* const text = std::get_if<view::FormText>(&row.content))
        all.push_back(text->text);
      if (const auto* const toggle = std::get_if<view::Toggle>(&row.content))
        all.push_back(toggle->label.title + (toggle->isOn ? ": on" : ": off"));
    }
  }
  return all;
}

std::string footer(const view::TabView& tab) {
  return std::get<view::Form>(tab.body()).sections.front().footer;
}

struct NoPrompt final : AccessPrompt {
  void ask(std::function<void(Answer)> /*onAnswer*/) override { FAIL() << "asked again"; }
};

/// Stands as a test says.
struct Source final : KeySource {
  explicit Source(Events told) : events(std::move(told)) {}
  [[nodiscard]] std::string name() const override { return "source"; }
  [[nodiscard]] bool offers(platform::MediaKey) const override { return true; }
  void hold(const std::set<platform::MediaKey>&) override {}
  [[nodiscard]] KeyState state(platform::MediaKey key) const override {
    const auto found = states.find(key);
    return found == states.end() ? KeyState::held : found->second;
  }
  Events events;
  std::map<platform::MediaKey, KeyState> states;
};

struct Custody final : KeyCustody {
  [[nodiscard]] State state() const override { return itsState; }
  void entrust() override { change(true); }
  void restore() override { change(false); }
  void setWanted(const std::set<platform::MediaKey>&) override {}
  [[nodiscard]] Token observe(std::function<void()> block) override {
    return observers.add(std::move(block));
  }
  void change(bool isEntrusted) {
    itsState.isEntrusted = isEntrusted;
    observers.notify();
  }
  State itsState;
  Listeners<> observers;
};

class PrivacySettingsTest : public testing::Test {
 protected:
  PrivacySettingsTest() {
    DesktopEventStore::Sources sources;
    auto made = std::make_unique<tests::FakeCalendarSource>(
        CalendarSource::Reach::readable,
        std::vector<platform::EventCalendar>{
            {"1", "a", {}, "Travail"}, {"2", "b", {}, "Travail"}, {"3", "c"}});
    source = made.get();
    sources.push_back(std::move(made));
    store.emplace(std::move(sources), record, prompt);
  }
  QTemporaryDir folder_;
  QtRunLoop runLoop;
  PrivacyRecord record{folder_.filePath("privacy.conf").toStdString()};
  NoPrompt prompt;
  tests::FakeCalendarSource* source = nullptr;
  std::optional<DesktopEventStore> store;
  /// A tap that wants all keys but the brightness down.
  void installTap() {
    tap = keys.createTap(
        {}, {}, {}, ~0U,
        {.handleEvent = {}, .wouldSwallow = [](std::uint32_t code) { return code != 3; }});
    connection = tap->addToMainRunLoop();
    tap->enable(true);
  }
  ~PrivacySettingsTest() override {
    connection.reset();
    tap.reset();
  }
  sim::Trace trace;
  sim::ManualRunLoop clock{trace};
  Source* keySource = nullptr;
  MediaKeyTaps keys{clock, {[this](KeySource::Events events) {
                      auto made = std::make_unique<Source>(std::move(events));
                      keySource = made.get();
                      return made;
                    }}};
  std::unique_ptr<platform::EventTap> tap;
  Token connection;
};

TEST_F(PrivacySettingsTest, CalendarsAreGivenAndTakenBack) {
  PrivacySettings settings({*store, record, keys});
  EventAuthorization known = store->authorizationStatus();
  const auto answers = settings.observeAnswers([&] {
    store->requestFullAccessToEvents([&](bool) { known = store->authorizationStatus(); });
  });
  const auto tab = settings.scene().tabs[0].make();
  const auto flip = [&](bool isOn) {
    std::get<view::Toggle>(std::get<view::Form>(tab->body()).sections[0].rows[0].content).set(isOn);
  };
  EXPECT_EQ(lines(*tab), (Lines{"[Accès aux calendriers]", "Lire mes calendriers: off"}));
  flip(true);
  EXPECT_EQ(known, EventAuthorization::fullAccess);
  const Lines given{"[Accès aux calendriers]", "Lire mes calendriers: on", "[Ce qui est lu]",
                    "Sans compte: 1 calendrier", "Travail: 2 calendriers"};
  EXPECT_TRUE(waitFor([&] { return lines(*tab) == given; }));
  flip(false);
  EXPECT_EQ(known, EventAuthorization::denied);
  EXPECT_TRUE(store->calendars().empty());
  EXPECT_TRUE(waitFor([&] { return lines(*tab).size() == 2 && source->stops == 1; }));
  // Not only here can it be given.
  source->itsReach = CalendarSource::Reach::closed;
  record.setCalendars(PrivacyRecord::Answer::allowed);
  EXPECT_TRUE(waitFor([&] { return lines(*tab)[1] == "Lire mes calendriers: on"; }));
  EXPECT_THAT(footer(*tab), HasSubstr("le système ne laisse pas"));
}

TEST_F(PrivacySettingsTest, KeysShowWhoHasThemAndWhoElseShowsThem) {
  using platform::MediaKey;
  installTap();
  const Lines held{"[Touches de volume et de luminosité]",
                   "Interception: complète",
                   "Volume plus fort: valdrix",
                   "Volume moins fort: valdrix",
                   "Muet: valdrix",
                   "Luminosité plus forte: valdrix",
                   "Luminosité moins forte: laissée au bureau",
                   "[Indicateur du bureau]"};
  const KeyAccessTab gnome(keys, nullptr, indicatorOf({"ubuntu", "GNOME"}));
  auto expected = held;
  expected.push_back("GNOME: ne s'affiche pas");
  EXPECT_EQ(lines(gnome), expected);

  keySource->states = {{MediaKey::mute, KeyState::taken},
                       {MediaKey::brightnessUp, KeyState::absent}};
  keySource->events.changed();
  clock.runPending();
  expected[1] = "Interception: en partie";
  expected[4] = "Muet: un autre programme";
  expected[5] = "Luminosité plus forte: absente du clavier";
  expected.back() = "GNOME: s'affiche aussi";
  EXPECT_EQ(lines(gnome), expected);

  for (const auto& [key, word] : platform::mediaKeys) keySource->states[key] = KeyState::withheld;
  keySource->events.changed();
  clock.runPending();
  const auto withheld = lines(gnome);
  EXPECT_EQ(withheld[1], "Interception: aucune");
  EXPECT_EQ(withheld[2], "Volume plus fort: le bureau");
  EXPECT_THAT(withheld,
              testing::IsSupersetOf(
                  {"[Commandes]", "Luminosité moins forte: valdrix key brightness-down"}));
}

TEST_F(PrivacySettingsTest, ALossOfKeysIsToldOnceForItsCause) {
  using platform::MediaKey;
  installTap();
  int told = 0;
  const auto start = [&] {
    return std::make_unique<KeyLossNotice>(keys, record, clock, [&told](const auto&) { ++told; });
  };
  const auto change = [this](KeyState state) {
    keySource->states[MediaKey::mute] = state;
    keySource->events.changed();
    clock.runPending();
  };
  auto notice = start();
  change(KeyState::taken);
  clock.advance(9);
  change(KeyState::held);
  clock.advance(60);
  EXPECT_EQ(told, 0) << "desktops take and leave keys while they start";
  change(KeyState::taken);
  clock.advance(10);
  EXPECT_EQ(told, 1);
  change(KeyState::held);
  notice = start();
  change(KeyState::taken);
  clock.advance(60);
  EXPECT_EQ(told, 1) << "the next login";
  change(KeyState::withheld);
  clock.advance(60);
  EXPECT_EQ(told, 2) << "another cause";
}

TEST_F(PrivacySettingsTest, KeysAreEntrustedAndGivenBackByAButton) {
  Custody custody;
  custody.itsState.places = {{platform::MediaKey::mute, KeyCustody::Place::desktop}};
  custody.itsState.note = "Une remarque.";
  const KeyAccessTab tab(keys, &custody, nullptr);
  const auto button = [&tab] {
    const auto form = std::get<view::Form>(tab.body());
    return std::get<view::PushButton>(form.sections.at(1).rows.at(0).content);
  };
  EXPECT_THAT(lines(tab), testing::Contains("Une remarque."));
  EXPECT_EQ(button().title, "Confier les touches à valdrix");
  button().action();
  EXPECT_TRUE(custody.itsState.isEntrusted);
  EXPECT_EQ(button().title, "Rendre les touches au bureau");
  button().action();
  EXPECT_FALSE(custody.itsState.isEntrusted);
}

}  // namespace
}  // namespace valdrix::desktop
