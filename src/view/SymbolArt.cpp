#include "view/SymbolArt.h"

#include <array>
#include <map>

#include "view/PathParser.h"

namespace valdrix::view {

namespace {

/// How a symbol is drawn: path data on a grid of so many units to the em. The grid is the size at
/// which the symbol is mostly shown, so that edges on whole units fall on whole pixels there.
struct Drawing {
  std::string_view name;
  double unitsPerEm;
  Size size;
  std::vector<std::string_view> fills;
  std::vector<std::string_view> strokes;
};

// A medium stroke is about an eleventh of the em.
constexpr double strokePerEm = 1.2 / 13;

constexpr std::string_view speaker =
    "M1.9 4 H3.4 C3.8 4 4.1 3.9 4.4 3.65 L6.6 1.7 C7.15 1.2 8 1.55 8 2.3 V10.7"
    "C8 11.45 7.15 11.8 6.6 11.3 L4.4 9.35 C4.1 9.1 3.8 9 3.4 9 H1.9"
    "C1.35 9 1 8.65 1 8.1 V4.9 C1 4.35 1.35 4 1.9 4 Z";
// The speaker without a band of even width along the slash.
constexpr std::string_view speakerBelowSlash =
    "M1.55 4.05 L8 10.5 V10.7 C8 11.45 7.15 11.8 6.6 11.3 L4.4 9.35 C4.1 9.1 3.8 9 3.4 9 H1.9"
    "C1.35 9 1 8.65 1 8.1 V4.9 C1 4.5 1.2 4.15 1.55 4.05 Z";
constexpr std::string_view speakerAboveSlash = "M5.33 2.83 L6.6 1.7 C7.15 1.2 8 1.55 8 2.3 V5.5 Z";
constexpr std::string_view slash = "M1.5 1.5 L11.5 11.5";
// Arcs around (7, 6.5), each 33 degrees to either side.
constexpr std::string_view wave1 = "M9.94 4.59 A3.5 3.5 0 0 1 9.94 8.41";
constexpr std::string_view wave2 = "M12.45 2.96 A6.5 6.5 0 0 1 12.45 10.04";
constexpr std::string_view wave3 = "M14.97 1.33 A9.5 9.5 0 0 1 14.97 11.67";

constexpr std::string_view sun = "M3.5 6.5 a3 3 0 0 1 6 0 a3 3 0 0 1 -6 0 Z";
constexpr std::string_view shortRays =
    "M6.5 1.6 v-.01 M6.5 11.4 v.01 M1.6 6.5 h-.01 M11.4 6.5 h.01"
    "M3.04 3.04 l-.01 -.01 M9.96 3.04 l.01 -.01 M3.04 9.96 l-.01 .01 M9.96 9.96 l.01 .01";
constexpr std::string_view longRays =
    "M6.5 1.7 v-1 M6.5 11.3 v1 M1.7 6.5 h-1 M11.3 6.5 h1"
    "M3.11 3.11 l-.71 -.71 M9.89 3.11 l.71 -.71 M3.11 9.89 l-.71 .71 M9.89 9.89 l.71 .71";

constexpr std::string_view largeSparkle =
    "M4.75 2.5 C5.25 5.4 6.1 6.25 9 6.75 C6.1 7.25 5.25 8.1 4.75 11"
    "C4.25 8.1 3.4 7.25 .5 6.75 C3.4 6.25 4.25 5.4 4.75 2.5 Z";
constexpr std::string_view mediumSparkle =
    "M9.5 .5 C9.8 2.1 10.15 2.45 11.75 2.75 C10.15 3.05 9.8 3.4 9.5 5"
    "C9.2 3.4 8.85 3.05 7.25 2.75 C8.85 2.45 9.2 2.1 9.5 .5 Z";
constexpr std::string_view smallSparkle =
    "M9.75 8.25 C9.97 9.42 10.2 9.65 11.37 9.87 C10.2 10.09 9.97 10.32 9.75 11.5"
    "C9.53 10.32 9.3 10.09 8.13 9.87 C9.3 9.65 9.53 9.42 9.75 8.25 Z";

constexpr std::string_view lockBody =
    "M2.3 5 H7.7 C8.5 5 9 5.5 9 6.3 V9.7 C9 10.5 8.5 11 7.7 11 H2.3"
    "C1.5 11 1 10.5 1 9.7 V6.3 C1 5.5 1.5 5 2.3 5 Z";
constexpr std::string_view lockShackle = "M2.7 5.5 V3.3 A2.3 2.3 0 0 1 7.3 3.3 V5.5";

const std::vector<Drawing>& drawings() {
  constexpr Size speakerSize{18, 13};
  constexpr Size sunSize{13, 13};
  static const std::vector<Drawing> all = {
      {"speaker.slash.fill", 13, speakerSize, {speakerBelowSlash, speakerAboveSlash}, {slash}},
      {"speaker.fill", 13, speakerSize, {speaker}, {}},
      {"speaker.wave.1.fill", 13, speakerSize, {speaker}, {wave1}},
      {"speaker.wave.2.fill", 13, speakerSize, {speaker}, {wave1, wave2}},
      {"speaker.wave.3.fill", 13, speakerSize, {speaker}, {wave1, wave2, wave3}},
      {"sun.min.fill", 13, sunSize, {sun}, {shortRays}},
      {"sun.max.fill", 13, sunSize, {sun}, {longRays}},
      {"sparkles", 11, {12, 12}, {largeSparkle, mediumSparkle, smallSparkle}, {}},
      {"lock.fill", 11, {10, 12}, {lockBody}, {lockShackle}},
  };
  return all;
}

double strokeFactor(FontWeight weight) {
  switch (weight) {
    case FontWeight::light:
      return 0.75;
    case FontWeight::regular:
      return 0.9;
    case FontWeight::medium:
      return 1;
    case FontWeight::semibold:
      return 1.15;
    case FontWeight::bold:
      return 1.3;
  }
  return 1;
}

Symbol realized(const Drawing& drawing, FontWeight weight) {
  const double scale = 1 / drawing.unitsPerEm;
  Symbol symbol{{drawing.size.width * scale, drawing.size.height * scale}, {}};
  for (const auto data : drawing.fills)
    symbol.parts.push_back({parsePath(data).value_or(Path()).transformed(scale, {})});
  for (const auto data : drawing.strokes)
    symbol.parts.push_back({parsePath(data).value_or(Path()).transformed(scale, {}), true,
                            strokePerEm * strokeFactor(weight), true});
  return symbol;
}

using Symbols = std::map<std::string_view, Symbol>;

Symbols allRealized(FontWeight weight) {
  Symbols symbols;
  for (const auto& drawing : drawings()) symbols.emplace(drawing.name, realized(drawing, weight));
  return symbols;
}

}  // namespace

const Symbol* symbolNamed(std::string_view name, FontWeight weight) {
  static std::map<FontWeight, Symbols> byWeight;
  auto symbols = byWeight.find(weight);
  if (symbols == byWeight.end()) symbols = byWeight.emplace(weight, allRealized(weight)).first;
  const auto symbol = symbols->second.find(name);
  return symbol == symbols->second.end() ? nullptr : &symbol->second;
}

}  // namespace valdrix::view
