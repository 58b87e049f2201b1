#pragma once

#include <string>

namespace valdrix::view {

enum class FontWeight { light, regular, medium, semibold, bold };
/// `rounded` asks for a face with round stroke ends; where none is installed the default stands in.
enum class FontDesign { standard, rounded };

/// The user-interface font at a size in points.
struct Font {
  double size = 13;
  FontWeight weight = FontWeight::regular;
  FontDesign design = FontDesign::standard;
  /// All digits take the same width, so that a changing number does not shift.
  bool hasMonospacedDigits = false;
  bool operator==(const Font&) const = default;
};

/// Everything that decides how a piece of text is laid out.
struct TextStyle {
  Font font{};
  /// Extra space after each character, in points.
  double tracking = 0;
  /// The most lines to use; 0 means as many as it takes. Text that does not fit ends in an
  /// ellipsis.
  int lineLimit = 0;
  /// Shown in capitals, by the rules of `locale`.
  bool isUppercase = false;
  /// A locale identifier such as "fr_FR"; empty means the user's own.
  std::string locale{};
  bool operator==(const TextStyle&) const = default;
};

}  // namespace valdrix::view
