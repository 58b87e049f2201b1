// What the user reads and does where access is given and withdrawn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <QTemporaryDir>

#include "desktop/calendar/DesktopEventStore.h"
#include "desktop/privacy/CalendarAccessTab.h"
#include "desktop/privacy/KeyAccessTab.h"
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

struct Trust final : platform::Accessibility {
  [[nodiscard]] bool isProcessTrusted() override { return isTrusted; }
  bool isProcessTrustedWithOptions(bool /*prompt*/) override { return isTrusted; }
  bool isTrusted = true;
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
  Trust trust;
};

TEST_F(PrivacySettingsTest, CalendarsAreGivenAndTakenBack) {
  PrivacySettings settings({*store, record, trust, runLoop, [] { return MediaKeyReport(); }});
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
  const auto* const gnome = indicatorOf({"ubuntu", "GNOME"});
  const struct {
    MediaKeyReport report;
    const DesktopIndicator* indicator;
    Lines lines;
    const char* footer;
  } rows[]{
      {{"x11-grabs", {0}, {}, {2}, {7}},
       gnome,
       {"Moyen: serveur X", "Volume plus fort: valdrix", "Muet: absente du clavier",
        "Luminosité plus forte: laissée au bureau", "[Indicateur du bureau]",
        "GNOME: ne s'affiche pas"},
       "jamais ce que tu tapes"},
      {{"x11-grabs", {}, {0}, {}, {}},
       gnome,
       {"Moyen: serveur X", "Volume plus fort: un autre programme", "[Indicateur du bureau]",
        "GNOME: s'affiche aussi"},
       "Un autre programme"},
      {{"x11-grabs", {0}, {}, {}, {}},
       indicatorOf({"XFCE"}),
       {"Moyen: serveur X", "Volume plus fort: valdrix", "[Indicateur du bureau]",
        "Xfce: s'affiche aussi"},
       "jamais ce que tu tapes"},
      {{},
       indicatorOf({"sway"}),
       {"[Commandes]", "Volume plus fort: valdrix key volume-up",
        "Volume moins fort: valdrix key volume-down", "Muet: valdrix key mute",
        "Luminosité plus forte: valdrix key brightness-up",
        "Luminosité moins forte: valdrix key brightness-down", "[Indicateur du bureau]",
        "Ce bureau n'en a pas de connu"},
       ""},
  };
  for (const auto& row : rows) {
    const KeyAccessTab tab(
        trust, runLoop, [&] { return row.report; }, row.indicator);
    auto expected = row.lines;
    expected.insert(expected.begin(), {"[Touches de volume et de luminosité]",
                                       row.report.isEmpty() ? "Interception: par commandes"
                                                            : "Interception: possible"});
    EXPECT_EQ(lines(tab), expected);
    EXPECT_THAT(footer(tab), HasSubstr(row.footer));
  }
}

TEST_F(PrivacySettingsTest, KeysAreFollowedWhileTheyAreShown) {
  sim::Trace trace;
  sim::ManualRunLoop clock(trace);
  const KeyAccessTab tab(
      trust, clock,
      [] {
        return MediaKeyReport{"x11-grabs", {0}, {}, {}, {}};
      },
      nullptr);
  trust.isTrusted = false;
  clock.advance(1.5);
  EXPECT_EQ(lines(tab)[1], "Interception: impossible");
}

}  // namespace
}  // namespace valdrix::desktop
