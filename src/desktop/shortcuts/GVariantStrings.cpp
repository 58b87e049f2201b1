#include "desktop/shortcuts/GVariantStrings.h"

#include <charconv>

#include <QString>

namespace valdrix::desktop {

namespace {

/// Reads a text from its front.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool skip(std::string_view expected) {
    text_.remove_prefix(std::min(text_.find_first_not_of(' '), text_.size()));
    if (!text_.starts_with(expected)) return false;
    text_.remove_prefix(expected.size());
    return true;
  }
  [[nodiscard]] bool isAtEnd() { return skip("") && text_.empty(); }

  std::optional<std::string> string() {
    const char quote = skip("'") ? '\'' : (skip("\"") ? '"' : '\0');
    if (quote == '\0') return std::nullopt;
    std::string string;
    while (!text_.empty()) {
      const char next = take();
      if (next == quote) return string;
      if (next != '\\')
        string += next;
      else if (!readEscape(string))
        return std::nullopt;
    }
    return std::nullopt;
  }

 private:
  char take() {
    const char next = text_.front();
    text_.remove_prefix(1);
    return next;
  }

  bool readEscape(std::string& string) {
    static constexpr std::string_view letters = "abfnrtv";
    static constexpr std::string_view controls = "\a\b\f\n\r\t\v";
    if (text_.empty()) return false;
    const char next = take();
    if (next == 'u' || next == 'U') return readCodePoint(next == 'u' ? 4 : 8, string);
    const auto control = letters.find(next);
    string += control == std::string_view::npos ? next : controls[control];
    return true;
  }

  bool readCodePoint(std::size_t digits, std::string& string) {
    char32_t code = 0;
    std::uint32_t value = 0;
    const auto end = text_.data() + std::min(digits, text_.size());
    const auto [stop, error] = std::from_chars(text_.data(), end, value, 16);
    if (error != std::errc{} || stop != text_.data() + digits) return false;
    text_.remove_prefix(digits);
    code = value;
    string += QString::fromUcs4(&code, 1).toStdString();
    return true;
  }

  std::string_view text_;
};

/// As GLib prints it, so that texts can be compared.
std::string quoted(const std::string& string) {
  const char quote = string.find('\'') == std::string::npos ? '\'' : '"';
  std::string text(1, quote);
  for (const char c : string) {
    if (c == quote || c == '\\') text += '\\';
    text += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  return text + quote;
}

}  // namespace

std::optional<GVariantStrings> GVariantStrings::parse(std::string_view text) {
  Reader reader(text);
  GVariantStrings value{.isList = false, .strings = {}};
  reader.skip("@as");
  value.isList = reader.skip("[");
  const bool isEmpty = value.isList && reader.skip("]");
  while (!isEmpty) {
    auto string = reader.string();
    if (!string) return std::nullopt;
    value.strings.push_back(std::move(*string));
    if (value.isList && reader.skip(",")) continue;
    if (value.isList && !reader.skip("]")) return std::nullopt;
    break;
  }
  if (!reader.isAtEnd()) return std::nullopt;
  return value;
}

std::string GVariantStrings::text() const {
  if (!isList) return quoted(strings.empty() ? std::string() : strings.front());
  if (strings.empty()) return "@as []";
  std::string text;
  for (const auto& string : strings) text += (text.empty() ? "[" : ", ") + quoted(string);
  return text + ']';
}

}  // namespace valdrix::desktop
