#include "sim/ScenarioWords.h"

#include <charconv>
#include <cmath>
#include <limits>

#include <system_error>

#include "sim/ScenarioError.h"

namespace valdrix::sim {

namespace {

constexpr std::string_view whitespace = " \t\r";

std::string quoted(std::string_view word) { return "« " + std::string(word) + " »"; }

template <class Number>
std::optional<Number> parseNumber(std::string_view word) {
  Number value{};
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

}  // namespace

ScenarioWords::ScenarioWords(std::string_view line) {
  while (true) {
    const auto start = line.find_first_not_of(whitespace);
    if (start == std::string_view::npos || line[start] == '#') return;
    line.remove_prefix(start);
    const bool isQuoted = line.front() == '"';
    if (isQuoted) line.remove_prefix(1);
    const auto end = isQuoted ? line.find('"') : line.find_first_of(whitespace);
    if (isQuoted && end == std::string_view::npos) fail("guillemet non fermé");
    words_.emplace_back(line.substr(0, end));
    if (end == std::string_view::npos) return;
    line.remove_prefix(end + 1);
  }
}

std::string ScenarioWords::take(std::string_view what) {
  if (isEmpty()) fail("il manque " + std::string(what));
  return words_[next_++];
}

bool ScenarioWords::takeIf(std::string_view word) {
  if (isEmpty() || words_[next_] != word) return false;
  ++next_;
  return true;
}

std::size_t ScenarioWords::takeChoice(std::initializer_list<std::string_view> choices) {
  std::string list;
  for (const auto choice : choices) {
    if (!list.empty()) list += ", ";
    list += choice;
  }
  const auto word = take("un mot parmi " + list);
  std::size_t index = 0;
  for (const auto choice : choices) {
    if (word == choice) return index;
    ++index;
  }
  fail(quoted(word) + " au lieu d'un mot parmi " + list);
}

double ScenarioWords::takeNumber(std::string_view what) {
  constexpr double most = std::numeric_limits<double>::max();
  return takeNumber(what, -most, most);
}

double ScenarioWords::takeNumber(std::string_view what, double least, double most) {
  const auto word = take(what);
  const auto value = parseNumber<double>(word);
  if (!value || !std::isfinite(*value) || *value < least || *value > most)
    fail(quoted(word) + " n'est pas " + std::string(what));
  return *value;
}

unsigned ScenarioWords::takeInteger(std::string_view what, unsigned least, unsigned most) {
  const auto word = take(what);
  const auto value = parseNumber<unsigned>(word);
  if (!value || *value < least || *value > most)
    fail(quoted(word) + " n'est pas " + std::string(what));
  return *value;
}

float ScenarioWords::takeLevel() {
  return static_cast<float>(takeNumber("un niveau de 0 à 1", 0, 1));
}

view::Point ScenarioWords::takePoint() {
  const double x = takeNumber("une abscisse");
  return {x, takeNumber("une ordonnée")};
}

view::Rect ScenarioWords::takeRect() {
  constexpr double most = 1e6;
  const auto [x, y] = takePoint();
  const double width = takeNumber("une largeur", 0, most);
  return {x, y, width, takeNumber("une hauteur", 0, most)};
}

void ScenarioWords::expectEnd() const {
  if (!isEmpty()) fail("mot en trop : " + quoted(words_[next_]));
}

}  // namespace valdrix::sim
