#include "desktop/vdir/CalendarPlaces.h"

#include <algorithm>
#include <cctype>

#include <QJsonArray>
#include <QJsonDocument>

namespace valdrix::desktop {
namespace {

struct Section {
  std::size_t depth = 0;  ///< how many brackets stand around the name
  std::string name;
  std::map<std::string, std::string, std::less<>> values;  ///< as written

  [[nodiscard]] std::string_view value(std::string_view key) const {
    const auto found = values.find(key);
    return found == values.end() ? std::string_view() : found->second;
  }
};

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view spaces = " \t\r\v\f";
  const auto first = text.find_first_not_of(spaces);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

/// The lines that say something, without the spaces around them.
std::vector<std::string_view> linesOf(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const auto length = std::min(text.find('\n'), text.size());
    const auto line = trimmed(text.substr(0, length));
    if (!line.empty() && line.front() != '#') lines.push_back(line);
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return lines;
}

Section sectionIn(std::string_view line) {
  const auto depth = std::min(line.find_first_not_of('['), line.size());
  const auto name = line.substr(depth, line.find(']') - depth);
  return {depth, std::string(trimmed(name)), {}};
}

std::vector<Section> sectionsOf(std::string_view text) {
  std::vector<Section> sections(1);
  for (const auto line : linesOf(text)) {
    if (line.front() == '[') {
      sections.push_back(sectionIn(line));
    } else if (const auto equals = line.find_first_of("=:"); equals != std::string_view::npos) {
      sections.back().values.insert_or_assign(std::string(trimmed(line.substr(0, equals))),
                                              trimmed(line.substr(equals + 1)));
    }
  }
  return sections;
}

/// A value with quotes around it, or with a comment after it.
std::string plainValue(std::string_view value) {
  if (!value.empty() && (value.front() == '"' || value.front() == '\'')) {
    const auto end = value.find(value.front(), 1);
    return std::string(value.substr(1, end == std::string_view::npos ? end : end - 1));
  }
  return std::string(trimmed(value.substr(0, value.find('#'))));
}

/// A text as JSON writes it; empty for anything else.
std::string jsonValue(std::string_view value) {
  const QByteArray list = '[' + QByteArray(value.data(), static_cast<int>(value.size())) + ']';
  return QJsonDocument::fromJson(list).array().at(0).toString().toStdString();
}

bool isVariableLetter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

/// How long the variable is that `text` begins with, sign and braces included; 0 for none.
std::size_t variableLength(std::string_view text) {
  if (text.size() < 2 || text[0] != '$') return 0;
  if (text[1] == '{') return text.find('}') == std::string_view::npos ? 0 : text.find('}') + 1;
  const auto* const end = std::find_if_not(text.begin() + 1, text.end(), isVariableLetter);
  return end == text.begin() + 1 ? 0 : static_cast<std::size_t>(end - text.begin());
}

}  // namespace

std::vector<std::string> placesInSettings(std::string_view text) {
  const auto lines = linesOf(text);
  return {lines.begin(), lines.end()};
}

std::vector<std::string> placesInKhal(std::string_view text) {
  std::vector<std::string> places;
  bool isInCalendars = false;
  for (const auto& section : sectionsOf(text)) {
    if (section.depth <= 1) isInCalendars = section.name == "calendars";
    const auto place = plainValue(section.value("path"));
    if (!isInCalendars || section.depth != 2 || place.empty()) continue;
    if (plainValue(section.value("type")) != "birthdays") places.push_back(place);
  }
  return places;
}

std::vector<std::string> placesInVdirsyncer(std::string_view text) {
  std::vector<std::string> places;
  for (const auto& section : sectionsOf(text)) {
    if (!section.name.starts_with("storage ")) continue;
    const auto type = jsonValue(section.value("type"));
    const auto extension = jsonValue(section.value("fileext"));
    const auto place = jsonValue(section.value("path"));
    const bool isFolder = type == "filesystem" && (extension.empty() || extension == ".ics");
    // %s stands for the names of collections, so such a path is a pattern.
    const bool isFile = type == "singlefile" && place.ends_with(".ics");
    if (place.empty() || !(isFolder || isFile)) continue;
    const auto pattern = isFile ? place.find("%s") : std::string::npos;
    places.push_back(pattern == std::string::npos ? place
                                                  : std::string(place).replace(pattern, 2, "*"));
  }
  return places;
}

std::string expandPlace(std::string_view place,
                        const std::map<std::string, std::string>& environment) {
  std::string expanded;
  if (const auto home = environment.find("HOME"); home != environment.end())
    if (place == "~" || place.starts_with("~/")) {
      expanded = home->second;
      place.remove_prefix(1);
    }
  while (!place.empty()) {
    const auto length = variableLength(place);
    const bool hasBraces = length > 2 && place[1] == '{';
    const auto name =
        hasBraces ? place.substr(2, length - 3) : place.substr(1, length == 0 ? 0 : length - 1);
    const auto variable = environment.find(std::string(name));
    const bool isKnown = length > 0 && variable != environment.end();
    expanded += isKnown ? std::string_view(variable->second) : place.substr(0, 1);
    place.remove_prefix(isKnown ? length : 1);
  }
  return expanded;
}

}  // namespace valdrix::desktop
