// What tabs and rows make of values that scenarios don't go through one by one.

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "preferences/PreferenceDefaults.h"
#include "settings/SettingsView.h"
#include "sim/SceneLines.h"
#include "sim/SimDesktop.h"

namespace valdrix {
namespace {

class Settings : public testing::Test {
 protected:
  Settings() {
    registerPreferenceDefaults(desktop.userDefaults);
    restartCalendarService();
  }

  void restartCalendarService() {
    calendarService.emplace(CalendarService::Ports{.eventStore = desktop.eventStore,
                                                   .collator = desktop.collator,
                                                   .userCalendar = desktop.userCalendar,
                                                   .runLoop = desktop.runLoop,
                                                   .userDefaults = desktop.userDefaults,
                                                   .workspace = desktop.workspace});
  }

  /// What a tab shows now.
  [[nodiscard]] view::TabContent content(std::size_t index) {
    const auto scene = SettingsView{{.calendarService = *calendarService,
                                     .launchAtLoginService = launchAtLoginService,
                                     .userDefaults = desktop.userDefaults,
                                     .accessibility = desktop.accessibility,
                                     .runLoop = desktop.runLoop,
                                     .workspace = desktop.workspace,
                                     .bundle = desktop.bundle}}
                           .body();
    EXPECT_EQ(scene.size, (view::Size{520, 460}));
    return scene.tabs.at(index).make()->body();
  }

  /// The texts of the given lines of a tab.
  [[nodiscard]] std::vector<std::string> lines(std::size_t index, std::string_view start) {
    std::vector<std::string> texts;
    for (const auto& line : sim::linesOf(content(index)))
      if (line.text.starts_with(start)) texts.push_back(line.text.substr(start.size()));
    return texts;
  }

  sim::SimDesktop desktop;
  std::optional<CalendarService> calendarService;
  LaunchAtLoginService launchAtLoginService{desktop.loginItem};
};

TEST_F(Settings, ShowHowLongAnIndicatorReallyStays) {
  const struct {
    const char* stored;
    const char* text;
    const char* knob;
  } rows[]{
      {"0.9", "0.9 s", "0.9"},  {"2.96", "3.0 s", "2.96"}, {"0.1", "0.1 s", "0.4"},
      {"25", "25.0 s", "3"},    {"0", "0.9 s", "0.9"},     {"-3", "0.9 s", "0.9"},
      {"nan", "0.9 s", "0.9"},  {"inf", "∞ s", "3"},       {"1e300", "∞ s", "3"},
      {"soon", "0.9 s", "0.9"},
  };
  const std::string title = "Durée d'affichage: ";
  for (const auto& row : rows) {
    desktop.userDefaults.setFromOutside("hudDuration", row.stored);
    EXPECT_EQ(lines(2, "row " + title), std::vector<std::string>{row.text}) << row.stored;
    EXPECT_EQ(lines(2, "slider " + title),
              std::vector<std::string>{std::string(row.knob) + " (0,4 s to 3,0 s)"})
        << row.stored;
  }
}

TEST_F(Settings, SayHowMuchIsReallyListed) {
  const struct {
    const char* events;
    const char* days;
    std::vector<std::string> steppers;
    const char* summary;
  } rows[]{
      {"2",
       "1",
       {"2 (2 of 1 to 10)", "1 jour (1 of 1 to 7)"},
       "jusqu'à 2 événements à venir dans les 1 prochain jour."},
      {"1",
       "2",
       {"1 (1 of 1 to 10)", "2 jours (2 of 1 to 7)"},
       "jusqu'à 1 événement à venir dans les 2 prochains jours."},
      {"25",
       "-4",
       {"25 (25 of 1 to 10)", "1 jour (1 of 1 to 7)"},
       "jusqu'à 25 événements à venir dans les 1 prochain jour."},
      {"0",
       "soon",
       {"1 (1 of 1 to 10)", "7 jours (7 of 1 to 7)"},
       "jusqu'à 1 événement à venir dans les 7 prochains jours."},
  };
  for (const auto& row : rows) {
    desktop.userDefaults.setFromOutside("calendarMaxEvents", row.events);
    desktop.userDefaults.setFromOutside("calendarWindowDays", row.days);
    auto steppers = lines(1, "stepper Nombre maximum d'événements: ");
    for (auto& text : lines(1, "stepper Fenêtre: ")) steppers.push_back(std::move(text));
    EXPECT_EQ(steppers, row.steppers) << row.summary;
    EXPECT_EQ(lines(1, "footer Le notch affichera "), std::vector<std::string>{row.summary});
  }
}

TEST_F(Settings, TellEveryStateOfTheCalendarAccess) {
  const std::string ask = "button Autoriser l'accès au calendrier";
  const std::string open = "button Ouvrir les Réglages Système";
  const std::string refused = "Refusé (xmark.circle.fill e5484d)";
  const struct {
    std::int64_t status;
    std::string badge;
    std::vector<std::string> buttons;
  } rows[]{
      {0, "Non demandé (dimmed)", {ask}},
      {1, refused, {open}},
      {2, refused, {open}},
      {3, "Autorisé (checkmark.circle.fill 2e9e4f)", {}},
      {4, refused, {open}},
      {5, "Inconnu (dimmed)", {}},
      {-1, "Inconnu (dimmed)", {}},
  };
  for (const auto& row : rows) {
    desktop.eventStore.setAuthorizationStatus(platform::EventAuthorization(row.status));
    restartCalendarService();
    EXPECT_EQ(lines(1, "row Accès au calendrier: "), std::vector<std::string>{row.badge});
    std::vector<std::string> buttons;
    for (const auto& text : lines(1, "button ")) buttons.push_back("button " + text);
    EXPECT_EQ(buttons, row.buttons) << row.status;
    EXPECT_EQ(lines(1, "section Calendriers").size(), row.status == 3 ? 1U : 0U);
  }
}

}  // namespace
}  // namespace valdrix
