#include "sim/ScenarioSettingsCommands.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "settings/ApplicationInfo.h"
#include "sim/ScenarioError.h"
#include "sim/ScenarioPlayer.h"

namespace valdrix::sim {

namespace {

using Action = Scenario::Action;
using Status = platform::LoginItem::Status;

constexpr unsigned mostTabs = 100;
constexpr double longestDelay = 3600;

// The menu and the settings window

Action parseMenu(ScenarioWords& words) {
  if (words.takeChoice({"open", "choose"}) == 0)
    return [](ScenarioPlayer& player) {
      if (!player.desktop().sceneHost.openMenu()) fail("aucun menu");
    };
  return [title = words.take("le titre d'une commande")](ScenarioPlayer& player) {
    if (!player.desktop().sceneHost.choose(title)) fail("aucune commande « " + title + " »");
  };
}

/// Something that a user does to the settings window; false when there is nothing to do it with.
using Gesture = std::function<bool(SimSettingsWindow& window)>;

Gesture takeGesture(ScenarioWords& words) {
  enum { tab, flip, step, slide, click, close };
  const auto verb = words.takeChoice({"tab", "flip", "step", "slide", "click", "close"});
  if (verb == close)
    return [](SimSettingsWindow& window) {
      window.close();
      return true;
    };
  const auto title = words.take("un titre");
  switch (verb) {
    case tab:
      return [title](SimSettingsWindow& window) { return window.select(title); };
    case flip:
      return [title](SimSettingsWindow& window) { return window.flip(title); };
    case step:
      return [title, isUp = words.takeChoice({"up", "down"}) == 0](SimSettingsWindow& window) {
        return window.step(title, isUp);
      };
    case slide:
      return [title, value = words.takeNumber("une valeur")](SimSettingsWindow& window) {
        return window.slide(title, value);
      };
    default:
      return [title](SimSettingsWindow& window) { return window.click(title); };
  }
}

Action parseSettings(ScenarioWords& words) {
  if (words.takeIf("open")) {
    std::optional<std::size_t> tab;
    if (!words.isEmpty()) tab = words.takeInteger("un numéro d'onglet", 1, mostTabs) - 1;
    return [tab](ScenarioPlayer& player) { player.desktop().sceneHost.openSettings(tab); };
  }
  return [gesture = takeGesture(words)](ScenarioPlayer& player) {
    auto* window = player.desktop().sceneHost.settingsWindow();
    if (!window || !gesture(*window)) fail("rien de tel dans les réglages");
  };
}

// The desktop and the network

Status takeStatus(ScenarioWords& words) {
  constexpr std::array statuses{Status::notRegistered, Status::enabled, Status::requiresApproval,
                                Status::notFound};
  return statuses.at(
      words.takeChoice({"notRegistered", "enabled", "requiresApproval", "notFound"}));
}

Action parseLoginItem(ScenarioWords& words) {
  switch (words.takeChoice({"status", "becomes", "refused", "allowed"})) {
    case 0:
      return [status = takeStatus(words)](ScenarioPlayer& player) {
        player.desktop().loginItem.setStatus(status);
      };
    case 1:
      return [status = takeStatus(words)](ScenarioPlayer& player) {
        player.desktop().loginItem.setStatusWhenRegistered(status);
      };
    case 2:
      return [](ScenarioPlayer& player) { player.desktop().loginItem.setRefusing(true); };
    default:
      return [](ScenarioPlayer& player) { player.desktop().loginItem.setRefusing(false); };
  }
}

Action parseWebsite(ScenarioWords& words) {
  platform::UrlResponse response{.statusCode = 200};
  switch (words.takeChoice({"unreachable", "publishes", "answers"})) {
    case 0:
      return [](ScenarioPlayer& player) { player.desktop().urlSession.forgetAnswers(); };
    case 1:
      response.body = words.take("une version") + '\n';
      break;
    default:
      response.statusCode = static_cast<int>(words.takeInteger("un code HTTP", 100, 599));
      break;
  }
  double delay = 0;
  if (words.takeIf("within")) delay = words.takeNumber("un délai en secondes", 0, longestDelay);
  return [response, delay](ScenarioPlayer& player) {
    player.desktop().urlSession.setAnswer(applicationInfo::versionURL(), response, delay);
  };
}

Action parseBundle(ScenarioWords& words) {
  constexpr std::array keys{platform::Bundle::shortVersionString, platform::Bundle::version};
  const auto choice = words.takeChoice({"version", "build", "blank"});
  if (choice == keys.size())
    return [](ScenarioPlayer& player) { player.desktop().bundle.forgetInfo(); };
  return [key = std::string(keys.at(choice)), text = words.take("un numéro")](
             ScenarioPlayer& player) { player.desktop().bundle.setInfoText(key, text); };
}

constexpr auto settingsCommands = std::to_array<ScenarioCommand>({
    {"bundle", parseBundle},
    {"login-item", parseLoginItem},
    {"menu", parseMenu},
    {"settings", parseSettings},
    {"website", parseWebsite},
});

}  // namespace

std::span<const ScenarioCommand> scenarioSettingsCommands() { return settingsCommands; }

}  // namespace valdrix::sim
