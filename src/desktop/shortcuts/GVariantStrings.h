#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace valdrix::desktop {

/// A string or a list of strings in GVariant's text format, as the tools of GSettings print and
/// read them: 'one', ['one', "it's two"], @as [].
struct GVariantStrings {
  bool isList = false;
  /// Of a string exactly one.
  std::vector<std::string> strings;

  /// None when the text is of another type, or none at all.
  [[nodiscard]] static std::optional<GVariantStrings> parse(std::string_view text);
  [[nodiscard]] std::string text() const;
};

/// `string` as a value in that format.
[[nodiscard]] inline std::string gvariantText(std::string string) {
  return GVariantStrings{.isList = false, .strings = {std::move(string)}}.text();
}

}  // namespace valdrix::desktop
