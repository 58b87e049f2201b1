#include "desktop/session/IniDocument.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace valdrix::desktop {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

constexpr std::array<std::pair<char, char>, 6> escapes{
    {{'\\', '\\'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'s', ' '}, {'0', '\0'}}};

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view spaces = " \t\r";
  const auto first = text.find_first_not_of(spaces);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

std::string escaped(std::string_view value) {
  std::string text;
  text.reserve(value.size());
  for (std::size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    const bool isEdge = i == 0 || i + 1 == value.size();
    const auto* const escape = std::ranges::find(escapes, c, &std::pair<char, char>::second);
    if (escape == escapes.end() || ((c == ' ' || c == '\t') && !isEdge)) {
      text += c;
    } else {
      text += {'\\', escape->first};
    }
  }
  return text;
}

std::string unescaped(std::string_view text) {
  std::string value;
  value.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPair = text[i] == '\\' && i + 1 < text.size();
    const auto* const escape =
        isPair ? std::ranges::find(escapes, text[i + 1], &std::pair<char, char>::first)
               : escapes.end();
    value += escape == escapes.end() ? text[i] : escape->second;
    if (escape != escapes.end()) ++i;
  }
  return value;
}

struct Line {
  enum class Kind { empty, group, entry, unreadable };
  Kind kind;
  std::string_view name;   ///< of the group, or the key
  std::string_view value;  ///< as written
};

Line parseLine(std::string_view text) {
  const auto line = trimmed(text);
  if (line.empty() || line.front() == '#' || line.front() == ';')
    return {Line::Kind::empty, {}, {}};
  if (line.front() == '[' && line.back() == ']' && line.size() > 2)
    return {Line::Kind::group, line.substr(1, line.size() - 2), {}};
  const auto equals = line.find('=');
  if (equals == 0 || equals == std::string_view::npos) return {Line::Kind::unreadable, {}, {}};
  return {Line::Kind::entry, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1))};
}

Line parseLine(const std::vector<std::string>& lines, std::size_t index) {
  std::string_view text = lines[index];
  if (index == 0 && text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  return parseLine(text);
}

}  // namespace

IniDocument::IniDocument(std::string_view text, std::string group) : group_(std::move(group)) {
  while (!text.empty()) {
    const auto length = std::min(text.find('\n'), text.size());
    lines_.emplace_back(text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  index();
}

void IniDocument::index() {
  values_.clear();
  lineOfKey_.clear();
  groupEnd_ = 0;
  hasUnreadableLines_ = false;
  bool isInGroup = group_ == generalGroup;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const auto [kind, name, value] = parseLine(lines_, i);
    if (kind == Line::Kind::unreadable) hasUnreadableLines_ = true;
    if (kind == Line::Kind::group) isInGroup = name == group_;
    if (!isInGroup || (kind != Line::Kind::group && kind != Line::Kind::entry)) continue;
    groupEnd_ = i + 1;
    if (kind == Line::Kind::group) continue;
    values_.insert_or_assign(std::string(name), unescaped(value));
    lineOfKey_.insert_or_assign(std::string(name), i);
  }
}

std::string IniDocument::text() const {
  std::string text;
  for (const auto& line : lines_) (text += line) += '\n';
  return text;
}

bool IniDocument::isKey(std::string_view key) {
  return !key.empty() && std::ranges::all_of(key, [](unsigned char c) {
    return c < 0x80 && (std::isalnum(c) || c == '-' || c == '_' || c == '.');
  });
}

void IniDocument::set(std::string_view key, std::string_view value) {
  auto line = std::string(key) + '=' + escaped(value);
  if (const auto known = lineOfKey_.find(key); known != lineOfKey_.end()) {
    lines_[known->second] = std::move(line);
  } else {
    if (groupEnd_ == 0) {
      if (!lines_.empty()) lines_.emplace_back();
      lines_.push_back('[' + group_ + ']');
      groupEnd_ = lines_.size();
    }
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(groupEnd_), std::move(line));
  }
  index();
}

void IniDocument::removeUnreadableLines() {
  std::vector<std::string> readable;
  for (std::size_t i = 0; i < lines_.size(); ++i)
    if (parseLine(lines_, i).kind != Line::Kind::unreadable) readable.push_back(lines_[i]);
  lines_ = std::move(readable);
  index();
}

}  // namespace valdrix::desktop
