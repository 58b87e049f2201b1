#include "platform/TextUserDefaults.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

namespace valdrix::platform {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view spaces = " \t\r\n";
  const auto first = text.find_first_not_of(spaces);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

bool isWord(std::string_view text, std::string_view word) {
  return std::ranges::equal(
      text, word, [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

std::optional<bool> parseBool(std::string_view text) {
  const auto isOneOf = [word = trimmed(text)](std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view each) { return isWord(word, each); });
  };
  if (isOneOf({"true", "yes", "on", "1"})) return true;
  if (isOneOf({"false", "no", "off", "0"})) return false;
  return std::nullopt;
}

template <class T>
std::optional<T> parseNumber(std::string_view text) {
  const auto number = trimmed(text);
  T value{};
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error != std::errc() || end != number.data() + number.size()) return std::nullopt;
  return value;
}

std::optional<std::string> parseString(std::string_view text) { return std::string(text); }

struct TextWriter {
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(const std::string& value) const { return value; }
  std::string operator()(auto number) const {
    std::array<char, 64> buffer{};
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
  }
};

}  // namespace

void TextUserDefaults::registerDefaults(
    const std::vector<std::pair<std::string, Value>>& defaults) {
  for (const auto& [key, value] : defaults) registered_.insert_or_assign(key, textOf(value));
}

template <class T>
std::optional<T> TextUserDefaults::read(std::string_view key,
                                        std::optional<T> (*parse)(std::string_view)) const {
  if (const auto stored = storedText(key))
    if (auto value = parse(*stored)) return value;
  const auto registered = registered_.find(key);
  return registered == registered_.end() ? std::nullopt : parse(registered->second);
}

bool TextUserDefaults::boolForKey(std::string_view key) const {
  return read(key, parseBool).value_or(false);
}

std::int64_t TextUserDefaults::integerForKey(std::string_view key) const {
  return read(key, parseNumber<std::int64_t>).value_or(0);
}

double TextUserDefaults::doubleForKey(std::string_view key) const {
  return read(key, parseNumber<double>).value_or(0);
}

std::optional<std::string> TextUserDefaults::stringForKey(std::string_view key) const {
  return read(key, parseString);
}

std::string TextUserDefaults::textOf(const Value& value) { return std::visit(TextWriter{}, value); }

}  // namespace valdrix::platform
