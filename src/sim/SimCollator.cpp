#include "sim/SimCollator.h"

#include <array>
#include <string>
#include <utility>

namespace valdrix::sim {

namespace {

using Replacement = std::pair<std::string_view, std::string_view>;

constexpr auto lowerCase = std::to_array<Replacement>({
    {"À", "à"},
    {"Â", "â"},
    {"Ä", "ä"},
    {"Ç", "ç"},
    {"É", "é"},
    {"È", "è"},
    {"Ê", "ê"},
    {"Ë", "ë"},
    {"Î", "î"},
    {"Ï", "ï"},
    {"Ô", "ô"},
    {"Ö", "ö"},
    {"Ù", "ù"},
    {"Û", "û"},
    {"Ü", "ü"},
    {"Œ", "œ"},
});
constexpr auto withoutAccent = std::to_array<Replacement>({
    {"à", "a"},
    {"â", "a"},
    {"ä", "a"},
    {"ç", "c"},
    {"é", "e"},
    {"è", "e"},
    {"ê", "e"},
    {"ë", "e"},
    {"î", "i"},
    {"ï", "i"},
    {"ô", "o"},
    {"ö", "o"},
    {"ù", "u"},
    {"û", "u"},
    {"ü", "u"},
    {"œ", "oe"},
});

template <std::size_t N>
std::string replaced(std::string text, const std::array<Replacement, N>& replacements) {
  for (const auto& [from, to] : replacements)
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
      text.replace(at, from.size(), to);
  return text;
}

std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return replaced(std::move(lower), lowerCase);
}

}  // namespace

int SimCollator::compareIgnoringCase(std::string_view a, std::string_view b) const {
  const std::string lowerA = lowered(a);
  const std::string lowerB = lowered(b);
  const int letters = replaced(lowerA, withoutAccent).compare(replaced(lowerB, withoutAccent));
  return letters != 0 ? letters : lowerA.compare(lowerB);
}

}  // namespace valdrix::sim
