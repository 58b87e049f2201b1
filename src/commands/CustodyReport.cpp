#include "commands/CustodyReport.h"

#include <string>

namespace valdrix::commands {

namespace {

using Place = desktop::KeyCustody::Place;

/// The words of the keys that are there, with `title` before them; nothing when there are none.
std::string line(const desktop::KeyCustody::State& state, Place place, const char* title) {
  std::string words;
  for (const auto& [key, word] : platform::mediaKeys)
    if (const auto found = state.places.find(key);
        found != state.places.end() && found->second == place)
      words += (words.empty() ? "" : ", ") + std::string(word);
  return words.empty() ? words : title + words + '\n';
}

}  // namespace

desktop::AgentAnswer custodyReport(const desktop::KeyCustody::State& state) {
  if (state.isBusy) return {true, {}};
  if (state.hasFailed) return {false, state.note};
  if (!state.isEntrusted) return {true, "Les réglages du bureau sont comme avant."};
  auto text = line(state, Place::entrusted, "Confiées à valdrix : ") +
              line(state, Place::desktop, "Laissées au bureau : ") +
              line(state, Place::impossible, "Gardées par le bureau : ") + state.note;
  if (text.ends_with('\n')) text.pop_back();
  return {true, text};
}

}  // namespace valdrix::commands
