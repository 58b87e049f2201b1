#include "sim/ScenarioCommands.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string>
#include <utility>

#include "sim/ScenarioCalendarCommands.h"
#include "sim/ScenarioError.h"
#include "sim/ScenarioPlayer.h"
#include "sim/ScenarioSettingsCommands.h"

namespace valdrix::sim {

namespace {

using Action = Scenario::Action;
using platform::Screen;

constexpr unsigned mostDisplays = 1000;
constexpr unsigned mostRepeats = 1000;
constexpr unsigned mostSteps = 100000;
constexpr unsigned mostKeyCode = 0xFFFF;
constexpr double longestAnswer = 3600;
constexpr double loudestVolume = 10;

// Screens

Screen takeScreen(ScenarioWords& words) {
  Screen screen{.name = words.take("le nom de l'écran")};
  screen.frame = words.takeRect();
  while (!words.isEmpty()) {
    switch (words.takeChoice({"scale", "housing", "inset", "left", "right"})) {
      case 0:
        screen.scale = words.takeNumber("une échelle de 0.5 à 8", 0.5, 8);
        break;
      case 1: {
        const double width = words.takeNumber("une largeur", 0, screen.frame.width);
        const double height = words.takeNumber("une hauteur", 0, screen.frame.height);
        screen = SimScreens::withHousing(std::move(screen), width, height);
        break;
      }
      case 2:
        screen.safeAreaInsetTop = words.takeNumber("une hauteur", 0, screen.frame.height);
        break;
      case 3:
        screen.auxiliaryTopLeftArea = words.takeRect();
        break;
      default:
        screen.auxiliaryTopRightArea = words.takeRect();
        break;
    }
  }
  return screen;
}

Action parseScreen(ScenarioWords& words) {
  if (words.takeChoice({"add", "remove"}) == 1)
    return [name = words.take("le nom de l'écran")](ScenarioPlayer& player) {
      player.desktop().screens.unplug(name);
    };
  return [screen = takeScreen(words)](ScenarioPlayer& player) {
    player.desktop().screens.plugIn(screen);
  };
}

// Sound

platform::AudioObjectID deviceNamed(ScenarioPlayer& player, const std::string& name) {
  const auto device = player.desktop().audioHardware.device(name);
  if (device == 0) fail("aucun périphérique « " + name + " »");
  return device;
}

Action parseNewDevice(ScenarioWords& words, const std::string& name) {
  std::optional<float> volume;
  if (words.takeChoice({"volume", "without-volume"}) == 0) volume = words.takeLevel();
  const bool isMuted = words.takeIf("muted");
  return [name, volume, isMuted](ScenarioPlayer& player) {
    player.desktop().audioHardware.addDevice(name, volume, isMuted);
  };
}

Action parseDevice(ScenarioWords& words) {
  const auto verb = words.takeChoice(
      {"add", "remove", "default", "no-default", "volume", "mute", "unmute", "notify"});
  if (verb == 3)
    return [](ScenarioPlayer& player) { player.desktop().audioHardware.setDefaultDevice(0); };
  const auto name = words.take("le nom du périphérique");
  if (verb == 0) return parseNewDevice(words, name);
  const double volume = verb == 4 ? words.takeNumber("un niveau de 0 à 10", 0, loudestVolume) : 0;
  return [verb, name, volume](ScenarioPlayer& player) {
    const auto device = deviceNamed(player, name);
    SimAudioHardware& audio = player.desktop().audioHardware;
    switch (verb) {
      case 1:
        return audio.removeDevice(device);
      case 2:
        return audio.setDefaultDevice(device);
      case 4:
        return audio.changeVolume(device, static_cast<float>(volume));
      case 5:
        return audio.changeMute(device, true);
      case 6:
        return audio.changeMute(device, false);
      default:
        return audio.notify(device, platform::audioAddress::volume);
    }
  };
}

Action parseAudioAnswers(ScenarioWords& words) {
  const auto choice = words.takeChoice({"at-once", "late", "never"});
  double delay = choice == 2 ? std::numeric_limits<double>::infinity() : 0;
  if (choice == 1) delay = words.takeNumber("un nombre de secondes", 0, longestAnswer);
  return [delay](ScenarioPlayer& player) { player.desktop().audioHardware.setAnswerDelay(delay); };
}

Action parseAudio(ScenarioWords& words) {
  const auto what = words.takeChoice({"reads", "writes", "answers"});
  if (what == 2) return parseAudioAnswers(words);
  const bool isRead = what == 0;
  const auto state =
      isRead ? words.takeChoice({"work", "fail"}) : words.takeChoice({"work", "fail", "are-lost"});
  return [isRead, state](ScenarioPlayer& player) {
    SimAudioHardware& audio = player.desktop().audioHardware;
    if (isRead) return audio.setReadsFail(state == 1);
    audio.setWritesFail(state == 1);
    audio.setWritesAreLost(state == 2);
  };
}

// Displays

Action parseNewDisplay(ScenarioWords& words, platform::DisplayID display) {
  const bool isBuiltin = words.takeChoice({"built-in", "external"}) == 0;
  SimDisplayServices::Backlight backlight;
  while (!words.isEmpty()) {
    switch (words.takeChoice({"brightness", "steps", "unchangeable"})) {
      case 0:
        backlight.level = words.takeLevel();
        break;
      case 1:
        backlight.steps = words.takeInteger("un nombre de pas", 1, mostSteps);
        break;
      default:
        backlight.canChange = false;
        break;
    }
  }
  return [display, isBuiltin, backlight](ScenarioPlayer& player) {
    player.desktop().displayServices.backlight(display) = backlight;
    player.desktop().displays.plug(display, isBuiltin);
  };
}

Action parseDisplay(ScenarioWords& words) {
  const auto verb = words.takeChoice({"add", "remove", "brightness", "reads", "writes"});
  const platform::DisplayID display =
      words.takeInteger("un numéro d'écran de 1 à 1000", 1, mostDisplays);
  if (verb == 0) return parseNewDisplay(words, display);
  if (verb == 1)
    return [display](ScenarioPlayer& player) { player.desktop().displays.unplug(display); };
  if (verb == 2)
    return [display, level = words.takeLevel()](ScenarioPlayer& player) {
      player.desktop().displayServices.backlight(display).level = level;
    };
  const std::int32_t status = words.takeChoice({"work", "fail"}) == 0 ? 0 : -1;
  return [display, status, isRead = verb == 3](ScenarioPlayer& player) {
    auto& backlight = player.desktop().displayServices.backlight(display);
    (isRead ? backlight.getStatus : backlight.setStatus) = status;
  };
}

Action parseBrightnessLibrary(ScenarioWords& words) {
  const auto what =
      words.takeChoice({"missing", "without-can-change", "without-get", "without-set"});
  return [what](ScenarioPlayer& player) {
    auto& installation = player.desktop().displayServices.installation();
    installation.hasLibrary = what != 0;
    installation.hasCanChangeBrightness = what != 1;
    installation.hasGetBrightness = what != 2;
    installation.hasSetBrightness = what != 3;
  };
}

// Keys

std::uint32_t takeKey(ScenarioWords& words) {
  constexpr std::array<std::uint32_t, 5> codes{0, 1, 2, 3, 7};
  const auto key = words.takeChoice(
      {"volume-up", "volume-down", "brightness-up", "brightness-down", "mute", "code"});
  if (key < codes.size()) return codes[key];
  return words.takeInteger("un code de touche", 0, mostKeyCode);
}

std::uint32_t takeModifiers(ScenarioWords& words) {
  namespace flag = platform::modifierFlag;
  constexpr std::array<std::uint32_t, 4> flags{flag::shift, flag::control, flag::option,
                                               flag::command};
  std::uint32_t modifiers = 0;
  if (!words.takeIf("with")) return modifiers;
  do modifiers |= flags[words.takeChoice({"shift", "control", "option", "command"})];
  while (!words.isEmpty());
  return modifiers;
}

Action parsePress(ScenarioWords& words) {
  const auto key = takeKey(words);
  return [key, modifiers = takeModifiers(words)](ScenarioPlayer& player) {
    player.desktop().eventTaps.press(key, modifiers);
    player.desktop().eventTaps.release(key, modifiers);
  };
}

Action parseKey(ScenarioWords& words) {
  const auto key = takeKey(words);
  const auto verb = words.takeChoice({"down", "repeat", "up"});
  const unsigned count =
      verb == 1 ? words.takeInteger("un nombre de répétitions de 1 à 1000", 1, mostRepeats) : 1;
  return [key, verb, count, modifiers = takeModifiers(words)](ScenarioPlayer& player) {
    SimEventTaps& keys = player.desktop().eventTaps;
    if (verb == 2) {
      keys.release(key, modifiers);
      return;
    }
    // The desktop gets a turn between two repeats, as it does between real ones.
    for (unsigned i = 0; i < count; ++i) {
      keys.press(key, modifiers);
      player.desktop().runLoop.runPending();
    }
  };
}

Action parseTap(ScenarioWords& words) {
  switch (words.takeChoice({"timeout", "user-input", "refused", "allowed"})) {
    case 0:
      return [](ScenarioPlayer& player) {
        player.desktop().eventTaps.disableTaps(platform::tapDisabledByTimeout);
      };
    case 1:
      return [](ScenarioPlayer& player) {
        player.desktop().eventTaps.disableTaps(platform::tapDisabledByUserInput);
      };
    case 2:
      return [](ScenarioPlayer& player) { player.desktop().eventTaps.setCreationFails(true); };
    default:
      return [](ScenarioPlayer& player) { player.desktop().eventTaps.setCreationFails(false); };
  }
}

Action parseTrust(ScenarioWords& words) {
  return [isTrusted = words.takeChoice({"granted", "refused"}) == 0](ScenarioPlayer& player) {
    player.desktop().accessibility.setTrusted(isTrusted);
  };
}

// Pointer

Action parsePointer(ScenarioWords& words) {
  if (words.takeIf("unwatchable"))
    return [](ScenarioPlayer& player) { player.desktop().pointer.setAllowsMonitors(false); };
  return
      [point = words.takePoint()](ScenarioPlayer& player) { player.desktop().pointer.move(point); };
}

Action parseDrag(ScenarioWords& words) {
  const bool isRight = words.takeIf("right");
  return [isRight, point = words.takePoint()](ScenarioPlayer& player) {
    player.desktop().pointer.drag(point, isRight);
  };
}

Action parseClick(ScenarioWords&) {
  return [](ScenarioPlayer& player) {
    const bool isOurs = player.desktop().pointer.click();
    player.desktop().trace.add(isOurs ? "click panel" : "click desktop");
  };
}

// The program and its traces

Action parsePreference(ScenarioWords& words) {
  const auto key = words.take("la clé de la préférence");
  if (words.isEmpty())
    return [key](ScenarioPlayer& player) { player.desktop().userDefaults.removeFromOutside(key); };
  return [key, value = words.take("une valeur")](ScenarioPlayer& player) {
    player.desktop().userDefaults.setFromOutside(key, value);
  };
}

Action parseLaunch(ScenarioWords&) {
  return [](ScenarioPlayer& player) { player.launch(); };
}

Action parseQuit(ScenarioWords&) {
  return [](ScenarioPlayer& player) { player.quit(); };
}

Action parsePicture(ScenarioWords& words) {
  const auto name = words.take("le nom de l'image");
  const bool isPlain = name.find_first_of("/\\") == std::string::npos && !name.starts_with('.');
  if (!isPlain || !name.ends_with(".png")) fail("« " + name + " » n'est pas un nom en .png");
  return [name](ScenarioPlayer& player) { player.takePicture(name); };
}

Action parseReport(ScenarioWords& words) {
  switch (words.takeChoice({"frames", "timers", "texts", "settings"})) {
    case 0:
      return [](ScenarioPlayer& player) { player.reportFrames(); };
    case 1:
      return [](ScenarioPlayer& player) { player.reportTimers(); };
    case 2:
      return [](ScenarioPlayer& player) { player.reportTexts(); };
    default:
      return [](ScenarioPlayer& player) { player.reportSettings(); };
  }
}

/// One screen of 1512 × 982 with a housing of 200 × 32, speakers and a built-in display half up.
Action parseLaptop(ScenarioWords&) {
  return [](ScenarioPlayer& player) {
    SimDesktop& desktop = player.desktop();
    const Screen screen{.name = "eDP-1", .frame = {0, 0, 1512, 982}, .scale = 2};
    desktop.screens.plugIn(SimScreens::withHousing(screen, 200, 32));
    desktop.audioHardware.addDevice("speakers", 0.5F);
    desktop.displays.plug(1, true);
  };
}

constexpr auto commands = std::to_array<ScenarioCommand>({
    {"audio", parseAudio},
    {"brightness-library", parseBrightnessLibrary},
    {"click", parseClick},
    {"device", parseDevice},
    {"display", parseDisplay},
    {"drag", parseDrag},
    {"key", parseKey},
    {"laptop", parseLaptop},
    {"launch", parseLaunch},
    {"picture", parsePicture},
    {"pointer", parsePointer},
    {"preference", parsePreference},
    {"press", parsePress},
    {"quit", parseQuit},
    {"report", parseReport},
    {"screen", parseScreen},
    {"tap", parseTap},
    {"trust", parseTrust},
});

}  // namespace

Scenario::Action parseScenarioCommand(ScenarioWords& words) {
  const auto name = words.take("une commande");
  for (const auto subject : {std::span<const ScenarioCommand>(commands), scenarioCalendarCommands(),
                             scenarioSettingsCommands()}) {
    const auto command = std::ranges::find(subject, name, &ScenarioCommand::name);
    if (command == subject.end()) continue;
    auto action = command->parse(words);
    words.expectEnd();
    return action;
  }
  fail("commande inconnue : « " + name + " »");
}

}  // namespace valdrix::sim
