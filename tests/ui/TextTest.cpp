// Text as it is measured and as it then lands on pixels.

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include <QImage>
#include <QPainter>

#include "desktop/ui/QtCanvas.h"
#include "desktop/ui/QtTextMetrics.h"

namespace valdrix::desktop {
namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

view::TextStyle style(double size, int lineLimit = 0) {
  view::TextStyle result;
  result.font.size = size;
  result.lineLimit = lineLimit;
  return result;
}

double width(const char* text, const view::TextStyle& textStyle) {
  return QtTextMetrics().measure(text, textStyle, unlimited).width;
}

/// A picture of `text` laid out in `bounds`, with `margin` pixels around it.
QImage drawn(const char* text, const view::TextStyle& textStyle, view::Size bounds, int margin = 4,
             double scale = 1) {
  QImage image(int(std::ceil(bounds.width * scale)) + 2 * margin,
               int(std::ceil(bounds.height * scale)) + 2 * margin,
               QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  const QtTextMetrics metrics;
  QPainter painter(&image);
  painter.translate(margin, margin);
  painter.scale(scale, scale);
  QtCanvas canvas(painter, metrics);
  canvas.drawText(text, textStyle, {0, 0, bounds.width, bounds.height}, view::Color::white());
  painter.end();
  return image;
}

/// The rectangle around everything drawn.
QRect ink(const QImage& image) {
  QRect result;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qAlpha(image.pixel(x, y)) > 32) result |= QRect(x, y, 1, 1);
  return result;
}

TEST(Text, DrawsWhereItWasMeasuredAtEveryScale) {
  for (const double scale : {1.0, 1.25, 2.0}) {
    for (const double size : {10.0, 12.5, 40.0}) {
      SCOPED_TRACE(testing::Message() << "size " << size << " scale " << scale);
      const auto bounds = QtTextMetrics().measure("Hamburg", style(size), unlimited);
      const QRect touched = ink(drawn("Hamburg", style(size), bounds, 20, scale));
      EXPECT_GE(touched.left(), 19);
      EXPECT_GE(touched.top(), 19);
      EXPECT_LE(touched.right(), 21 + bounds.width * scale);
      EXPECT_LE(touched.bottom(), 21 + bounds.height * scale);
      EXPECT_GT(touched.width(), bounds.width * scale * 0.9);
    }
  }
}

TEST(Text, AMeasuredWidthIsEnoughForTheSameText) {
  const QtTextMetrics metrics;
  for (const char* text :
       {"100%", "09:05", "mercredi 18 novembre", "اجتماع الفريق", "🎉👩‍👩‍👧 x"}) {
    for (const double size : {11.0, 12.3}) {
      const auto ideal = metrics.measure(text, style(size, 1), unlimited);
      EXPECT_EQ(metrics.measure(text, style(size, 1), ideal.width - 1e-9).height, ideal.height);
      const double floored = std::floor(ideal.width);
      const QImage whole = drawn(text, style(size, 1), {floored + 1, ideal.height});
      const QImage narrow = drawn(text, style(size, 1), {floored, ideal.height});
      const QRect both(0, 0, narrow.width(), narrow.height());
      EXPECT_EQ(narrow, whole.copy(both)) << "bounds put on whole pixels cut " << text;
    }
  }
}

TEST(Text, LongTextIsHeldToItsLinesAndWidth) {
  const QtTextMetrics metrics;
  const std::string sentence =
      "Ton agenda est dégagé pour les 7 prochains jours et même bien davantage, dit-on.";
  const double line = metrics.measure("x", style(11), unlimited).height;
  const auto lines = [&](const std::string& text, int limit, double maxWidth) {
    const auto size = metrics.measure(text, style(11, limit), maxWidth);
    EXPECT_LE(size.width, maxWidth);
    return size.height / line;
  };
  EXPECT_EQ(lines(sentence, 1, 150), 1);
  EXPECT_EQ(lines(sentence, 2, 150), 2);
  EXPECT_EQ(lines(sentence, 0, unlimited), 1);
  EXPECT_GE(lines(sentence, 0, 150), 3);
  EXPECT_EQ(lines("une\ndeux\r\ntrois", 0, unlimited), 3);
  EXPECT_EQ(lines("une\ndeux\r\ntrois", 2, unlimited), 2);
  EXPECT_EQ(lines("", 1, unlimited), 1);
  EXPECT_EQ(lines(std::string(1'000'000, 'W'), 1, 100), 1);
  for (const double tiny : {0.0, 0.5, 3.0}) EXPECT_EQ(lines(sentence, 1, tiny), 1);
  EXPECT_EQ(lines("\xff\xfe broken \xc3", 1, 150), 1);
}

TEST(Text, EndsInAnEllipsisThatFillsTheLineWhereTextIsCut) {
  const QtTextMetrics metrics;
  const auto cut = metrics.measure("Anticonstitutionnellement vôtre", style(12, 1), 100);
  EXPECT_GT(cut.width, 85);
  EXPECT_LE(cut.width, 100);
  // A hard line end beyond the limit is a cut too, though everything on the line fits.
  EXPECT_NEAR(metrics.measure("une\ndeux", style(12, 1), 100).width, width("une…", style(12)), 0.1);
}

TEST(Text, MonospacedDigitsAllTakeTheWidestOnesCell) {
  for (const auto design : {view::FontDesign::standard, view::FontDesign::rounded}) {
    view::TextStyle digits = style(40);
    digits.font.design = design;
    digits.font.weight = view::FontWeight::light;
    digits.font.hasMonospacedDigits = true;
    const double expected = width("00:00", digits);
    for (const char* text : {"11:11", "19:47", "23:58", "07:06"})
      EXPECT_NEAR(width(text, digits), expected, 0.05) << text;
    view::TextStyle proportional = digits;
    proportional.font.hasMonospacedDigits = false;
    EXPECT_LT(width("11:11", proportional), expected - 1);
    EXPECT_NEAR(width("Midi", digits), width("Midi", proportional), 0.05);
    // Also in Arabic and behind an emoji, whose parts must not be torn from each other.
    EXPECT_NEAR(width("👩‍👩‍👧1", digits) - width("👩‍👩‍👧", digits),
                width("👩‍👩‍👧0", digits) - width("👩‍👩‍👧", digits), 0.05);
  }
}

TEST(Text, CapitalsFollowTheLocaleAndTrackingAddsToEveryCharacter) {
  view::TextStyle capitals = style(11);
  capitals.isUppercase = true;
  capitals.locale = "fr_FR";
  EXPECT_EQ(width("jeudi 12 février", capitals), width("JEUDI 12 FÉVRIER", style(11)));
  capitals.locale = "tr_TR";
  EXPECT_EQ(width("iki", capitals), width("İKİ", style(11)));
  view::TextStyle tracked = style(11);
  tracked.tracking = 0.6;
  EXPECT_NEAR(width("DEMAIN", tracked), width("DEMAIN", style(11)) + 6 * 0.6, 0.15);
}

}  // namespace
}  // namespace valdrix::desktop
