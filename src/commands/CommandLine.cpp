#include "commands/CommandLine.h"

#include <charconv>
#include <cstddef>
#include <optional>

#include <system_error>

namespace valdrix::commands {

namespace {

using Words = std::vector<std::string>;

std::optional<double> positiveNumber(const std::string& word) {
  double value = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  if (error != std::errc{} || stop != end || !(value > 0) || value > 16) return std::nullopt;
  return value;
}

Command parseSimulate(const Words& words) {
  Simulate command;
  for (std::size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    const bool isOption = word == "--frames" || word == "--scale";
    if (isOption && i + 1 == words.size()) return Misuse{"il manque une valeur après " + word};
    if (word == "--frames") {
      command.framesFolder = words[++i];
    } else if (word == "--scale") {
      const auto scale = positiveNumber(words[++i]);
      if (!scale) return Misuse{"échelle non valable : " + words[i]};
      command.scale = *scale;
    } else if (word.starts_with("--")) {
      return Misuse{"option inconnue : " + word};
    } else if (command.file.empty()) {
      command.file = word;
    } else {
      return Misuse{"argument en trop : " + word};
    }
  }
  if (command.file.empty()) return Misuse{"il manque le fichier du scénario"};
  return command;
}

}  // namespace

Command parse(const Words& words) {
  if (words.empty()) return Run{};
  const std::string& verb = words.front();
  if (verb == "simulate") return parseSimulate(words);
  if (words.size() > 1) return Misuse{"argument en trop : " + words[1]};
  if (verb == "status") return Status{};
  if (verb == "quit") return Quit{};
  if (verb == "access") return Access{};
  if (verb == "--version") return ShowVersion{};
  if (verb == "--help" || verb == "-h") return ShowHelp{};
  return Misuse{"commande inconnue : " + verb};
}

std::string usage() {
  return "Utilisation : valdrix [commande]\n"
         "\n"
         "Sans commande, lance valdrix, ou passe la main à celui qui tourne déjà.\n"
         "\n"
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
