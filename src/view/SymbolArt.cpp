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

constexpr std::string_view gearRim =
    "M7.59 4.19Q7.91 4.06 8.09 3.17L8.19 2.69Q8.37 1.81 9.27 1.81L10.73 1.81"
    "Q11.63 1.81 11.81 2.69L11.91 3.17Q12.09 4.06 12.41 4.19Q12.73 4.32 13.48 3.82L13.89 3.55"
    "Q14.64 3.06 15.28 3.69L16.31 4.72Q16.94 5.36 16.45 6.11L16.18 6.52Q15.68 7.27 15.81 7.59"
    "Q15.94 7.91 16.83 8.09L17.31 8.19Q18.19 8.37 18.19 9.27L18.19 10.73"
    "Q18.19 11.63 17.31 11.81L16.83 11.91Q15.94 12.09 15.81 12.41Q15.68 12.73 16.18 13.48"
    "L16.45 13.89Q16.94 14.64 16.31 15.28L15.28 16.31Q14.64 16.94 13.89 16.45L13.48 16.18"
    "Q12.73 15.68 12.41 15.81Q12.09 15.94 11.91 16.83L11.81 17.31Q11.63 18.19 10.73 18.19"
    "L9.27 18.19Q8.37 18.19 8.19 17.31L8.09 16.83Q7.91 15.94 7.59 15.81Q7.27 15.68 6.52 16.18"
    "L6.11 16.45Q5.36 16.94 4.72 16.31L3.69 15.28Q3.06 14.64 3.55 13.89L3.82 13.48"
    "Q4.32 12.73 4.19 12.41Q4.06 12.09 3.17 11.91L2.69 11.81Q1.81 11.63 1.81 10.73L1.81 9.27"
    "Q1.81 8.37 2.69 8.19L3.17 8.09Q4.06 7.91 4.19 7.59Q4.32 7.27 3.82 6.52L3.55 6.11"
    "Q3.06 5.36 3.69 4.72L4.72 3.69Q5.36 3.06 6.11 3.55L6.52 3.82Q7.27 4.32 7.59 4.19Z";
constexpr std::string_view gearHole = "M7.15 10 a2.85 2.85 0 0 1 5.7 0 a2.85 2.85 0 0 1 -5.7 0 Z";

constexpr std::string_view calendarSheet =
    "M5 3.25 H15 A2.75 2.75 0 0 1 17.75 6 V15 A2.75 2.75 0 0 1 15 17.75 H5"
    "A2.75 2.75 0 0 1 2.25 15 V6 A2.75 2.75 0 0 1 5 3.25 Z M2.25 7.75 H17.75";
constexpr std::string_view calendarRings = "M6.5 1.75 V4.25 M13.5 1.75 V4.25";
constexpr std::string_view calendarDays =
    "M5.5 11 a1 1 0 0 1 2 0 a1 1 0 0 1 -2 0 Z M9 11 a1 1 0 0 1 2 0 a1 1 0 0 1 -2 0 Z"
    "M12.5 11 a1 1 0 0 1 2 0 a1 1 0 0 1 -2 0 Z M5.5 14.25 a1 1 0 0 1 2 0 a1 1 0 0 1 -2 0 Z"
    "M9 14.25 a1 1 0 0 1 2 0 a1 1 0 0 1 -2 0 Z";

constexpr std::string_view rectangleAboveSlider =
    "M4.25 2.75 H15.75 A2 2 0 0 1 17.75 4.75 V8.75 A2 2 0 0 1 15.75 10.75 H4.25"
    "A2 2 0 0 1 2.25 8.75 V4.75 A2 2 0 0 1 4.25 2.75 Z";
constexpr std::string_view sliderLine = "M2 15.5 H4.5 M9.5 15.5 H18";
constexpr std::string_view sliderKnob =
    "M4.75 15.5 a2.25 2.25 0 0 1 4.5 0 a2.25 2.25 0 0 1 -4.5 0 Z";

constexpr std::string_view circle = "M1.75 10 a8.25 8.25 0 0 1 16.5 0 a8.25 8.25 0 0 1 -16.5 0 Z";
constexpr std::string_view infoDot = "M8.85 6.3 a1.15 1.15 0 0 1 2.3 0 a1.15 1.15 0 0 1 -2.3 0 Z";
constexpr std::string_view infoStem = "M8.5 9.4 H10.15 V14.1 M8.1 14.1 H12.2";

// The disc runs against the sense of what is cut out of it.
constexpr std::string_view discWithCheckmark =
    "M1 10 a9 9 0 0 0 18 0 a9 9 0 0 0 -18 0 Z"
    "M6.7 9.9 L8.74 11.94 L13.24 6.46 A.85 .85 0 0 1 14.56 7.54 L9.46 13.74"
    "A.85 .85 0 0 1 8.2 13.8 L5.5 11.1 A.85 .85 0 0 1 6.7 9.9 Z";
constexpr std::string_view discWithCross =
    "M1 10 a9 9 0 0 0 18 0 a9 9 0 0 0 -18 0 Z"
    "M10 8.8 L12.45 6.35 A.85 .85 0 0 1 13.65 7.55 L11.2 10 L13.65 12.45"
    "A.85 .85 0 0 1 12.45 13.65 L10 11.2 L7.55 13.65 A.85 .85 0 0 1 6.35 12.45 L8.8 10 L6.35 7.55"
    "A.85 .85 0 0 1 7.55 6.35 Z";

constexpr std::string_view compassNeedle =
    "M14.5 5.5 L11.7 11.7 L5.5 14.5 L8.3 8.3 Z M8.9 10 a1.1 1.1 0 0 0 2.2 0 a1.1 1.1 0 0 0 -2.2 0 "
    "Z";

constexpr std::string_view screenFrame =
    "M4.5 3.25 H15.5 A2.75 2.75 0 0 1 18.25 6 V14 A2.75 2.75 0 0 1 15.5 16.75 H4.5"
    "A2.75 2.75 0 0 1 1.75 14 V6 A2.75 2.75 0 0 1 4.5 3.25 Z";
constexpr std::string_view screenTop =
    "M5.25 5.5 H14.75 A1.25 1.25 0 0 1 16 6.75 V8.5 A.5 .5 0 0 1 15.5 9 H4.5 A.5 .5 0 0 1 4 8.5"
    "V6.75 A1.25 1.25 0 0 1 5.25 5.5 Z";

const std::vector<Drawing>& drawings() {
  constexpr Size speakerSize{18, 13};
  constexpr Size sunSize{13, 13};
  // Signs of controls stand alone, a little larger than the text beside them.
  constexpr Size signSize{20, 20};
  constexpr double signUnits = 18;
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
      {"gear", signUnits, signSize, {}, {gearRim, gearHole}},
      {"calendar", signUnits, signSize, {calendarDays}, {calendarSheet, calendarRings}},
      {"slider.horizontal.below.rectangle",
       signUnits,
       signSize,
       {},
       {rectangleAboveSlider, sliderLine, sliderKnob}},
      {"info.circle", signUnits, signSize, {infoDot}, {circle, infoStem}},
      {"checkmark.circle.fill", signUnits, signSize, {discWithCheckmark}, {}},
      {"xmark.circle.fill", signUnits, signSize, {discWithCross}, {}},
      {"safari", signUnits, signSize, {compassNeedle}, {circle}},
      {"rectangle.topthird.inset.filled", signUnits, signSize, {screenTop}, {screenFrame}},
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
