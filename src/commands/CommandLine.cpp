#include "commands/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <span>
#include <string_view>

#include <system_error>

namespace valdrix::commands {

namespace {

/// What follows the command's own word.
using Words = std::span<const std::string>;

template <class T>
struct Named {
  std::string_view name;
  T value;
};

constexpr Named<std::size_t> settingsTabs[] = {
    {"general", 0}, {"calendrier", 1}, {"huds", 2}, {"apropos", 3}};

constexpr Named<std::size_t> permissionTabs[] = {{"calendriers", 0}, {"touches", 1}};

constexpr Named<ShowLevel::Kind> levels[] = {{"volume", ShowLevel::Kind::volume},
                                             {"brightness", ShowLevel::Kind::brightness}};

template <class T, std::size_t count>
const Named<T>* find(const Named<T> (&all)[count], std::string_view name) {
  const auto* const found = std::ranges::find(all, name, &Named<T>::name);
  return found == std::end(all) ? nullptr : found;
}

Misuse unexpected(const std::string& word) {
  return {(word.starts_with("-") ? "option inconnue : " : "argument en trop : ") + word};
}

/// A command without words of its own.
template <class C>
Command parseAlone(Words words) {
  if (!words.empty()) return unexpected(words[0]);
  return C{};
}

/// A number above 0 at the front of `text`, which it leaves with the rest.
std::optional<double> takeNumber(std::string_view& text, double most) {
  double value = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || !(value > 0) || value > most) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return value;
}

/// A command that opens a window, perhaps at one of its tabs.
template <class Open, const auto& tabs>
Command parseOpening(Words words) {
  if (words.empty()) return Open{};
  const auto* const tab = find(tabs, words[0]);
  if (!tab) return Misuse{"onglet inconnu : " + words[0]};
  if (words.size() > 1) return unexpected(words[1]);
  return Open{tab->value};
}

Command parseKey(Words words) {
  if (words.empty()) return Misuse{"il manque la touche"};
  const auto key = platform::mediaKeyWithWord(words[0]);
  if (!key) return Misuse{"touche inconnue : " + words[0]};
  PressKey command{{.key = *key, .isFine = false, .isRepeat = false}};
  for (const auto& word : words.subspan(1)) {
    if (word == "--fine")
      command.action.isFine = true;
    else if (word == "--repeat")
      command.action.isRepeat = true;
    else if (word == "--debounce")
      command.isDebounced = true;
    else
      return unexpected(word);
  }
  return command;
}

Command parseKeys(Words words) {
  if (words.empty()) return Misuse{"il manque ce qu'il faut faire des touches"};
  if (words.size() > 1) return unexpected(words[1]);
  if (words[0] == "entrust") return EntrustKeys{};
  if (words[0] == "restore") return RestoreKeys{};
  return Misuse{"action inconnue : " + words[0]};
}

Command parseShow(Words words) {
  if (words.empty()) return Misuse{"il manque ce qu'il faut montrer"};
  const auto* const level = find(levels, words[0]);
  if (!level) return Misuse{"niveau inconnu : " + words[0]};
  if (words.size() > 1) return unexpected(words[1]);
  return ShowLevel{level->value};
}

Command parseNotch(Words words) {
  if (words.empty()) return DescribeHousings{};
  if (words[0] != "--preview") return unexpected(words[0]);
  if (words.size() == 1) return Misuse{"il manque une valeur après " + words[0]};
  const auto size = parseSize(words[1]);
  if (!size) return Misuse{"taille non valable : " + words[1]};
  if (words.size() > 2) return unexpected(words[2]);
  return PreviewHousing{*size};
}

Command parseSimulate(Words words) {
  Simulate command;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    const bool isOption = word == "--frames" || word == "--scale";
    if (isOption && i + 1 == words.size()) return Misuse{"il manque une valeur après " + word};
    if (word == "--frames") {
      command.framesFolder = words[++i];
    } else if (word == "--scale") {
      std::string_view text = words[++i];
      const auto scale = takeNumber(text, 16);
      if (!scale || !text.empty()) return Misuse{"échelle non valable : " + words[i]};
      command.scale = *scale;
    } else if (word.starts_with("--") || !command.file.empty()) {
      return unexpected(word);
    } else {
      command.file = word;
    }
  }
  if (command.file.empty()) return Misuse{"il manque le fichier du scénario"};
  return command;
}

constexpr Named<Command (*)(Words)> verbs[] = {
    {"settings", parseOpening<OpenSettings, settingsTabs>},
    {"permissions", parseOpening<OpenPermissions, permissionTabs>},
    {"key", parseKey},
    {"keys", parseKeys},
    {"show", parseShow},
    {"notch", parseNotch},
    {"status", parseAlone<Status>},
    {"access", parseAlone<Access>},
    {"quit", parseAlone<Quit>},
    {"simulate", parseSimulate},
    {"--version", parseAlone<ShowVersion>},
    {"--help", parseAlone<ShowHelp>},
    {"-h", parseAlone<ShowHelp>},
};

}  // namespace

Command parse(const std::vector<std::string>& words) {
  if (words.empty()) return Run{};
  const auto* const verb = find(verbs, words[0]);
  if (!verb) return Misuse{"commande inconnue : " + words[0]};
  return verb->value(Words(words).subspan(1));
}

std::optional<view::Size> parseSize(std::string_view text) {
  constexpr double mostPoints = 10000;
  const auto width = takeNumber(text, mostPoints);
  if (!width || !text.starts_with('x')) return std::nullopt;
  text.remove_prefix(1);
  const auto height = takeNumber(text, mostPoints);
  if (!height || !text.empty()) return std::nullopt;
  return view::Size{*width, *height};
}

std::string usage() {
  return "Utilisation : valdrix [commande]\n"
         "\n"
         "Sans commande, lance valdrix, ou ouvre les réglages de celui qui tourne déjà.\n"
         "\n"
         "  settings [ONGLET]   ouvre les réglages : general, calendrier, huds ou apropos\n"
         "  permissions [ONGLET]\n"
         "                      ouvre la page où tu donnes et retires les accès : calendriers\n"
         "                      ou touches\n"
         "  key TOUCHE          agit comme la touche : volume-up, volume-down, mute,\n"
         "                      brightness-up ou brightness-down\n"
         "      --fine            par quart de pas, comme avec Maj\n"
         "      --repeat          comme une touche maintenue\n"
         "      --debounce        compte pour une répétition si elle suit de près\n"
         "  keys entrust        fait laisser ces touches à valdrix par les réglages du bureau\n"
         "  keys restore        remet ces réglages comme avant, même si valdrix ne tourne pas\n"
         "  show NIVEAU         montre le niveau actuel : volume ou brightness\n"
         "  notch               dit quelle encoche a chaque écran, et d'où valdrix le sait\n"
         "      --preview LxH     montre une encoche de cette taille en points, le temps "
         "d'essayer\n"
         "  status              affiche en JSON l'état du valdrix qui tourne\n"
         "  access              fait demander par le valdrix qui tourne l'accès aux calendriers\n"
         "  quit                arrête le valdrix qui tourne\n"
         "  simulate FICHIER    joue un scénario sur le bureau simulé\n"
         "      --frames DOSSIER  y écrit les images que le scénario demande\n"
         "      --scale N         pixels par point de ces images (1 par défaut)\n"
         "  --version           affiche la version\n"
         "  --help              affiche cette aide\n";
}

}  // namespace valdrix::commands
