#include "sim/SimTextMetrics.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace valdrix::sim {

namespace {

constexpr double advancePerEm = 0.6;
constexpr double lineHeightPerEm = 1.2;
constexpr auto noLimit = std::numeric_limits<std::size_t>::max();

bool startsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, startsCharacter));
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (true) {
    const auto end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

/// Characters on each line of one paragraph, broken between words, and inside words that are longer
/// than a line.
std::vector<std::size_t> lineLengths(std::string_view paragraph, std::size_t capacity) {
  std::vector<std::size_t> lines{0};
  bool isFirstWord = true;
  for (const auto word : split(paragraph, ' ')) {
    std::size_t length = characterCount(word);
    const std::size_t gap = std::exchange(isFirstWord, false) ? 0 : 1;
    if (lines.back() + gap + length <= capacity) {
      lines.back() += gap + length;
      continue;
    }
    if (lines.back() > 0) lines.push_back(0);
    for (; length > capacity; length -= capacity) {
      lines.back() = capacity;
      lines.push_back(0);
    }
    lines.back() = length;
  }
  return lines;
}

/// How many characters fit on a line; at least one.
std::size_t charactersPerLine(double width, double advance) {
  // A hair more than the division gives: a text must fit the width that was measured for it.
  const double count = width / advance + 1e-9;
  if (!(count < 1e9)) return noLimit;
  return std::max(std::size_t{1}, static_cast<std::size_t>(std::max(0.0, count)));
}

}  // namespace

view::Size SimTextMetrics::measure(std::string_view text, const view::TextStyle& style,
                                   double maxWidth) const {
  const double advance = std::max(0.0, advancePerEm * style.font.size + style.tracking);
  const std::size_t capacity = charactersPerLine(maxWidth, advance);
  std::vector<std::size_t> lines;
  for (const auto paragraph : split(text, '\n'))
    for (const auto length : lineLengths(paragraph, capacity)) lines.push_back(length);
  if (const auto limit = static_cast<std::size_t>(std::max(0, style.lineLimit));
      limit > 0 && lines.size() > limit) {
    lines.resize(limit);
    // The last line is filled up to the ellipsis.
    if (capacity != noLimit) lines.back() = capacity;
  }
  const auto longest = static_cast<double>(*std::ranges::max_element(lines));
  return {std::min(std::max(0.0, maxWidth), longest * advance),
          static_cast<double>(lines.size()) * lineHeightPerEm * style.font.size};
}

}  // namespace valdrix::sim
