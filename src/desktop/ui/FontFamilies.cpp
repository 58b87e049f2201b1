#include "desktop/ui/FontFamilies.h"

#include <algorithm>

#include <QFontDatabase>
#include <QRawFont>
#include <QStringList>

namespace valdrix::desktop {

namespace {

// Inter is drawn for user interfaces at small sizes: tall lower case, open shapes, and capitals and
// digits that stand in the middle of the line's height, so that a line centred beside a symbol
// looks centred. The desktop's own face comes next, then whatever it calls sans.
QStringList standardFamilies() {
  return {"Inter", QFontDatabase::systemFont(QFontDatabase::GeneralFont).family(), "sans-serif"};
}

/// A family and the weight to ask it for.
struct Cut {
  QStringList families;
  QFont::Weight weight;
};

// Quicksand has round stroke ends and open digits, and stays clear at the clock's size. Its strokes
// are about a weight thinner than those of other faces, so each weight takes the next heavier cut.
// The medium cut is installed as a family of its own; newer releases have one family with all cuts.
Cut roundedCut(view::FontWeight weight) {
  switch (weight) {
    case view::FontWeight::light:
      return {{"Quicksand"}, QFont::Normal};
    case view::FontWeight::regular:
      return {{"Quicksand Medium", "Quicksand"}, QFont::Medium};
    case view::FontWeight::medium:
    case view::FontWeight::semibold:
    case view::FontWeight::bold:
      break;
  }
  return {{"Quicksand"}, QFont::Bold};
}

// Qt has FreeType thicken the stems of CFF outlines and then blends them in a way that makes light
// text grow: on black, each cut looks like the next heavier one. Other outlines are left as they
// are drawn.
bool looksHeavier() {
  static const bool isThickened = [] {
    QFont font;
    font.setFamilies(standardFamilies());
    return !QRawFont::fromFont(font).fontTable("CFF ").isEmpty();
  }();
  return isThickened;
}

QFont::Weight standardWeight(view::FontWeight weight) {
  const bool isLighter = looksHeavier();
  switch (weight) {
    case view::FontWeight::light:
      return isLighter ? QFont::ExtraLight : QFont::Light;
    case view::FontWeight::regular:
      return isLighter ? QFont::Light : QFont::Normal;
    case view::FontWeight::medium:
      return isLighter ? QFont::Normal : QFont::Medium;
    case view::FontWeight::semibold:
      return isLighter ? QFont::Medium : QFont::DemiBold;
    case view::FontWeight::bold:
      break;
  }
  return isLighter ? QFont::DemiBold : QFont::Bold;
}

}  // namespace

QFont FontFamilies::font(const view::Font& font) {
  Cut cut{standardFamilies(), standardWeight(font.weight)};
  if (font.design == view::FontDesign::rounded && QFontDatabase::hasFamily("Quicksand")) {
    cut = roundedCut(font.weight);
    cut.families += standardFamilies();
  }
  QFont result;
  result.setFamilies(cut.families);
  result.setWeight(cut.weight);
  result.setStyleHint(QFont::SansSerif, static_cast<QFont::StyleStrategy>(
                                            QFont::PreferAntialias | QFont::NoSubpixelAntialias));
  result.setHintingPreference(QFont::PreferNoHinting);
  result.setPixelSize(std::max(1, qRound(font.size)));
  return result;
}

}  // namespace valdrix::desktop
