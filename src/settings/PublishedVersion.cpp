#include "settings/PublishedVersion.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace valdrix {

namespace {

struct Character {
  char32_t codePoint;
  std::size_t length;
};

/// How many bytes a character takes, by its first one, and what that byte adds to it.
struct Lead {
  unsigned char mask;
  unsigned char pattern;
  char32_t least;
};

constexpr std::array leads{Lead{0x80, 0x00, 0}, Lead{0xE0, 0xC0, 0x80}, Lead{0xF0, 0xE0, 0x800},
                           Lead{0xF8, 0xF0, 0x10000}};

constexpr bool isScalar(char32_t codePoint) {
  return codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
}

/// The first character of a text that is not empty, or nothing where that is not UTF-8: cut off,
/// longer than it need be, a surrogate, out of range.
std::optional<Character> firstCharacter(std::string_view text) {
  const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const auto* const lead = std::ranges::find_if(
      leads, [&](const Lead& each) { return (byte(0) & each.mask) == each.pattern; });
  if (lead == leads.end()) return std::nullopt;
  const auto length = static_cast<std::size_t>(lead - leads.begin()) + 1;
  if (text.size() < length) return std::nullopt;
  char32_t codePoint = byte(0) & static_cast<unsigned char>(~lead->mask);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return std::nullopt;
    codePoint = (codePoint << 6) | (byte(i) & 0x3FU);
  }
  if (codePoint < lead->least || !isScalar(codePoint)) return std::nullopt;
  return Character{codePoint, length};
}

/// The separators of Unicode (general category Z), the tabulators and the line breaks.
constexpr bool isSpace(char32_t c) {
  return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

}  // namespace

std::optional<std::string> publishedVersion(std::string_view file) {
  std::size_t start = std::string_view::npos;
  std::size_t end = 0;
  for (std::size_t at = 0; at < file.size();) {
    const auto character = firstCharacter(file.substr(at));
    if (!character) return std::nullopt;
    if (!isSpace(character->codePoint)) {
      start = std::min(start, at);
      end = at + character->length;
    }
    at += character->length;
  }
  if (end == 0) return std::nullopt;
  return std::string(file.substr(start, end - start));
}

}  // namespace valdrix
