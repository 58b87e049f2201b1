#include "sim/TraceDifference.h"

#include <algorithm>
#include <utility>

namespace valdrix::sim {

namespace {

using Lines = std::vector<std::string>;

/// `lengths[i][j]`: how many lines the rests from `i` and `j` on have in common, in order.
std::vector<std::vector<std::size_t>> commonLengths(const Lines& a, const Lines& b) {
  std::vector lengths(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = a.size(); i-- > 0;)
    for (std::size_t j = b.size(); j-- > 0;)
      lengths[i][j] =
          a[i] == b[j] ? lengths[i + 1][j + 1] + 1 : std::max(lengths[i + 1][j], lengths[i][j + 1]);
  return lengths;
}

std::size_t columnWidth(const Lines& lines) {
  std::size_t width = 0;
  for (const auto& line : lines) width = std::max(width, line.size());
  return width;
}

}  // namespace

std::string traceDifference(const Lines& expected, const Lines& actual) {
  if (expected == actual) return {};
  const auto common = commonLengths(expected, actual);
  const std::size_t width = columnWidth(expected);
  std::string text;
  const auto addRow = [&](const std::string& left, char mark, const std::string& right) {
    text += left + std::string(width - left.size(), ' ') + ' ' + mark + ' ' + right;
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
  };
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < expected.size() || j < actual.size()) {
    if (i < expected.size() && j < actual.size() && expected[i] == actual[j])
      addRow(expected[i++], ' ', actual[j++]);
    else if (j == actual.size() || (i < expected.size() && common[i + 1][j] >= common[i][j + 1]))
      addRow(expected[i++], '<', "");
    else
      addRow("", '>', actual[j++]);
  }
  return text;
}

}  // namespace valdrix::sim
