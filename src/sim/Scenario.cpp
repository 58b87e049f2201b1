#include "sim/Scenario.h"

#include <algorithm>
#include <utility>

#include "sim/ScenarioCommands.h"
#include "sim/ScenarioError.h"
#include "sim/ScenarioWords.h"
#include "sim/TraceChannels.h"

namespace valdrix::sim {

namespace {

/// A week, in seconds. Longer waits are slips of the pen.
constexpr double longestTime = 7 * 24 * 3600;
constexpr std::string_view separator = "---";

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    auto line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(line);
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return lines;
}

double takeTime(ScenarioWords& words) {
  return words.takeNumber("un temps en secondes", 0, longestTime);
}

void parseChannels(ScenarioWords& words, Scenario& scenario) {
  do {
    auto channel = words.take("un canal");
    if (!isTraceChannel(channel)) throw ScenarioError(0, "canal inconnu : « " + channel + " »");
    scenario.channels.push_back(std::move(channel));
  } while (!words.isEmpty());
}

void parseLine(std::string_view line, int number, Scenario& scenario) {
  ScenarioWords words(line);
  if (words.isEmpty()) return;
  if (words.takeIf("show")) return parseChannels(words, scenario);
  Scenario::Step step{.line = number};
  if (words.takeIf("at")) {
    step.time = takeTime(words);
    step.isRelative = false;
  } else if (words.takeIf("after")) {
    step.time = takeTime(words);
  } else {
    step.action = parseScenarioCommand(words);
    scenario.steps.push_back(std::move(step));
    return;
  }
  if (!words.isEmpty()) step.action = parseScenarioCommand(words);
  scenario.steps.push_back(std::move(step));
}

/// An expected line with one space between its words, or nothing for a comment or an empty line.
std::optional<std::string> expectedLine(std::string_view line) {
  std::string text;
  for (const char c : line) {
    if (c != ' ' && c != '\t')
      text += c;
    else if (!text.empty() && text.back() != ' ')
      text += ' ';
  }
  if (text.ends_with(' ')) text.pop_back();
  if (text.empty() || text.front() == '#') return std::nullopt;
  return text;
}

}  // namespace

Scenario Scenario::parse(std::string_view text) {
  Scenario scenario;
  int number = 0;
  for (const auto line : linesOf(text)) {
    ++number;
    if (scenario.expectedTrace) {
      if (auto expected = expectedLine(line))
        scenario.expectedTrace->push_back(*std::move(expected));
    } else if (line == separator) {
      scenario.expectedTrace.emplace();
    } else {
      try {
        parseLine(line, number, scenario);
      } catch (const ScenarioError& error) {
        throw ScenarioError(number, error.what());
      }
    }
  }
  return scenario;
}

}  // namespace valdrix::sim
