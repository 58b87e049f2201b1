#include <gtest/gtest.h>

#include "tests/view/Stage.h"
#include "view/DisplayList.h"

namespace valdrix::view {
namespace {

DisplayItem item(std::uint64_t owner, const Rect& rect, const Color& color = red) {
  DisplayItem made;
  made.owner = owner;
  made.path = Path::rectangle(rect);
  made.bounds = rect;
  made.color = color;
  return made;
}

DisplayItem clipped(DisplayItem made, const Rect& clip) {
  made.clips.push_back(std::make_shared<const Path>(Path::rectangle(clip)));
  return made;
}

TEST(Damage, IsExactlyWhatLooksDifferent) {
  const auto a = item(1, {0, 0, 10, 10});
  const auto b = item(2, {20, 0, 10, 10});
  const auto c = item(3, {40, 0, 10, 10});
  DisplayItem label = item(4, {30, 30, 50, 20});
  label.kind = DisplayItem::Kind::text;
  label.style.font.size = 12;
  DisplayItem otherLabel = label;
  otherLabel.text = "other";
  struct Case {
    const char* rule;
    DisplayList before;
    DisplayList after;
    Rect damage;
  };
  const Case cases[] = {
      {"nothing changed", {a, b}, {a, b}, {}},
      {"equal clips in other places", {clipped(a, {0, 0, 5, 5})}, {clipped(a, {0, 0, 5, 5})}, {}},
      {"moved", {a, b}, {item(1, {5, 0, 10, 10}), b}, {0, 0, 15, 10}},
      {"coloured", {a, b}, {a, item(2, {20, 0, 10, 10}, green)}, {20, 0, 10, 10}},
      {"came", {a, c}, {a, b, c}, {20, 0, 10, 10}},
      {"went", {a, b, c}, {a, c}, {20, 0, 10, 10}},
      {"took another's place", {a, b}, {a, c}, {20, 0, 30, 10}},
      {"came in front of the other", {a, b}, {b, a}, {0, 0, 10, 10}},
      {"as far as its clip shows",
       {clipped(a, {0, 0, 5, 5})},
       {clipped(item(1, {0, 0, 10, 10}, green), {0, 0, 5, 5})},
       {0, 0, 5, 5}},
      {"clipped otherwise", {clipped(a, {0, 0, 5, 5})}, {clipped(a, {0, 0, 8, 3})}, {0, 0, 8, 5}},
      {"glyphs reach out of their line", {label}, {otherLabel}, {26, 26, 58, 28}},
  };
  for (const auto& [rule, before, after, damage] : cases)
    EXPECT_EQ(difference(before, after).bounds(), damage) << rule;
}

TEST(Damage, LeavesOutWhatKeepsItsLook) {
  const Rect small{0, 0, 200, 100};
  const auto before = item(1, small);
  DisplayItem outline = before;
  outline.kind = DisplayItem::Kind::stroke;
  outline.lineWidth = 1;
  DisplayItem wideOutline = outline;
  wideOutline.path = Path::rectangle({0, 0, 220, 110});
  wideOutline.bounds = {0, 0, 220, 110};
  const auto damage = difference({before, outline}, {item(1, {0, 0, 220, 110}), wideOutline});
  EXPECT_EQ(damage.bounds(), (Rect{0, 0, 220, 110}));
  for (const auto& part : damage.rectangles())
    EXPECT_TRUE(part.intersected(small.outset(-1)).isEmpty()) << "the middle is as it was";

  EXPECT_TRUE(isOpaque({before}, small));
  EXPECT_FALSE(isOpaque({before}, small.outset(1))) << "beyond its edge";
  EXPECT_FALSE(isOpaque({outline}, small.outset(-2))) << "within a line";
  EXPECT_FALSE(isOpaque({item(1, small, Color::white(0.9))}, small)) << "translucent";

  DisplayList inside{clipped(item(2, {20, 20, 10, 10}), small)};
  dropIdleClips(inside);
  EXPECT_TRUE(inside[0].clips.empty());
  DisplayList across{clipped(item(2, {195, 20, 10, 10}), small)};
  dropIdleClips(across);
  EXPECT_EQ(across[0].clips.size(), 1);
}

TEST(Damage, KnowsTheMiddleOfSimpleShapesOnly) {
  Path notch;
  notch.move({0, 0});
  notch.line({100, 0});
  notch.line({100, 40});
  notch.quad({100, 50}, {90, 50});
  notch.line({10, 50});
  notch.quad({0, 50}, {0, 40});
  notch.close();
  Path dented = notch;
  dented.line({50, 30});
  EXPECT_EQ(notch.band(), (Rect{0, 0, 100, 40}));
  EXPECT_EQ(Path::roundedRectangle({0, 0, 100, 50}, 10, false).band(), (Rect{0, 10, 100, 30}));
  EXPECT_TRUE(dented.band().isEmpty());
  EXPECT_TRUE(Path::ellipse({0, 0, 100, 50}).band().isEmpty());
}

/// Writes down what is drawn.
class Protocol final : public Canvas {
 public:
  void fill(const Path& path, const Color&) override { add('f', path.bounds()); }
  void stroke(const Path& path, const Color&, double, bool) override { add('s', path.bounds()); }
  void drawText(std::string_view text, const TextStyle&, const Rect&, const Color&) override {
    calls += text;
    calls += ' ';
  }
  void pushClip(const Path& path) override { add('(', path.bounds()); }
  void popClip() override { calls += ") "; }
  std::string calls;

 private:
  void add(char what, const Rect& rect) {
    calls += what + std::to_string(std::lround(rect.x)) + ' ';
  }
};

TEST(Drawing, OnlyWhatIsDirtyWithSharedClipsOnce) {
  const View group =
      hStack({}, {box(red).frame(FrameSize{.width = 10}),
                  box(green).frame(FrameSize{.width = 10}).clipShape(RoundedRectangle{2}),
                  box(blue).frame(FrameSize{.width = 10})})
          .clipShape(RoundedRectangle{2});
  Stage stage(hStack({}, {group, label("text"), box(red)}));
  stage.frame();
  Protocol all;
  stage.host->draw(all, {0, 0, 400, 300});
  EXPECT_EQ(all.calls, "(0 f0 (10 f10 ) f20 ) text f70 ");
  Protocol part;
  stage.host->draw(part, {22, 0, 3, 300});
  EXPECT_EQ(part.calls, "(0 f20 ) ");
}

}  // namespace
}  // namespace valdrix::view
