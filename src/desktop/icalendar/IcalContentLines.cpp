#include "desktop/icalendar/IcalContentLines.h"

#include <algorithm>

namespace valdrix::desktop {

namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

/// Where the first of `wanted` stands outside quotes; an open quote that is never closed is none.
std::size_t findUnquoted(std::string_view text, std::string_view wanted, std::size_t from) {
  for (std::size_t at = from; at < text.size(); ++at) {
    if (wanted.find(text[at]) != std::string_view::npos) return at;
    if (text[at] != '"') continue;
    const std::size_t closing = text.find('"', at + 1);
    if (closing != std::string_view::npos) at = closing;
  }
  return text.size();
}

std::string_view withoutQuotes(std::string_view text) {
  const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

IcalContentLine split(std::string_view line) {
  const std::size_t nameEnd = std::min(line.find_first_of(";:"), line.size());
  const std::size_t colon =
      nameEnd < line.size() && line[nameEnd] == ';' ? findUnquoted(line, ":", nameEnd) : nameEnd;
  return {.name = line.substr(0, nameEnd),
          .parameters = line.substr(nameEnd, colon - nameEnd),
          .value = line.substr(std::min(colon + 1, line.size()))};
}

}  // namespace

bool isSameWord(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, upper, upper);
}

bool IcalContentLine::is(std::string_view other) const { return isSameWord(name, other); }

std::optional<std::string_view> IcalContentLine::parameter(std::string_view parameterName) const {
  // Every parameter begins with its semicolon.
  for (std::size_t at = 0; at < parameters.size();) {
    const std::size_t end = findUnquoted(parameters, ";", at + 1);
    const std::string_view pair = parameters.substr(at + 1, end - at - 1);
    const std::size_t equals = pair.find('=');
    if (equals != std::string_view::npos && isSameWord(pair.substr(0, equals), parameterName))
      return withoutQuotes(pair.substr(equals + 1));
    at = end;
  }
  return std::nullopt;
}

std::optional<std::string_view> IcalList::next() {
  if (isAtEnd_) return std::nullopt;
  const std::size_t comma = rest_.find(',');
  isAtEnd_ = comma == std::string_view::npos;
  const std::string_view part = rest_.substr(0, comma);
  if (!isAtEnd_) rest_.remove_prefix(comma + 1);
  return part;
}

IcalContentLines::IcalContentLines(std::string_view text) : text_(text) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(byteOrderMark)) position_ = byteOrderMark.size();
}

std::optional<IcalContentLine> IcalContentLines::next() {
  while (position_ < text_.size()) {
    std::string_view line = nextPhysicalLine();
    if (isFolded()) {
      unfolded_ = line;
      while (isFolded()) unfolded_ += nextPhysicalLine().substr(1);
      line = unfolded_;
    }
    if (!line.empty()) return split(line);
  }
  return std::nullopt;
}

std::string_view IcalContentLines::nextPhysicalLine() {
  const std::size_t end = std::min(text_.find('\n', position_), text_.size());
  std::string_view line = text_.substr(position_, end - position_);
  position_ = std::min(end + 1, text_.size());
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool IcalContentLines::isFolded() const {
  return position_ < text_.size() && (text_[position_] == ' ' || text_[position_] == '\t');
}

}  // namespace valdrix::desktop
