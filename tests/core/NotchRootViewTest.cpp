// Where the layers of the panel stand, taken from what is drawn.

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "notch/NotchRootView.h"
#include "notch/NotchShape.h"
#include "sim/SimDesktop.h"
#include "sim/SimTextMetrics.h"
#include "view/HostingView.h"

namespace valdrix {
namespace {

using view::Color;
using view::DisplayItem;
using view::Path;
using view::Rect;
using view::Size;

constexpr double middle = 360;
/// A scale so fine that nothing is moved to a whole pixel.
constexpr double exact = 1e6;
/// Text is laid out in a box that is this much wider than the text.
constexpr double textSlack = 0.1;
/// Of the line between the clock and the rest of the expanded content.
const Color dividerColor = Color::white(0.08);

class NotchRoot : public testing::Test {
 protected:
  /// Shows the panel for a notch of `size`.
  void show(Size size = {200, 32}, double scale = exact) {
    hosting_ = std::make_unique<view::HostingView>(
        NotchRootView{.viewModel = &model,
                      .calendar = {.calendarService = &calendarService_,
                                   .workspace = &desktop_.workspace,
                                   .cursor = &desktop_.cursor},
                      .collapsedSize = size},
        view::HostingView::Services{
            .textMetrics = metrics_,
            .now = [this] { return now; },
            .scheduleRepeatingTimer = [](double, const auto&) { return Token([] {}); }});
    hosting_->setFrame({0, 0, 720, 1000});
    hosting_->setScale(scale);
  }
  const view::DisplayList& drawn() {
    hosting_->prepareFrame(0);
    return hosting_->displayList();
  }
  std::vector<DisplayItem> drawnIn(const Color& color) {
    std::vector<DisplayItem> found;
    std::ranges::copy_if(drawn(), std::back_inserter(found),
                         [&](const DisplayItem& item) { return item.color == color; });
    return found;
  }
  /// The box of the only thing of that colour.
  Rect boxOf(const Color& color) {
    const auto found = drawnIn(color);
    EXPECT_EQ(found.size(), 1U);
    return found.empty() ? Rect{} : found.front().bounds;
  }
  const DisplayItem& textItem() {
    const auto& list = drawn();
    const auto found = std::ranges::find(list, DisplayItem::Kind::text, &DisplayItem::kind);
    EXPECT_NE(found, list.end());
    return *found;
  }
  /// The symbol's box, from its parts.
  Rect symbolBox() {
    Rect box;
    for (const auto& item : drawn())
      if (item.kind != DisplayItem::Kind::text && item.bounds.maxX() < middle - 90 &&
          item.color == Color::white())
        box = box.united(item.bounds);
    return box;
  }

  NotchViewModel model;
  double now = 0;

 private:
  sim::SimDesktop desktop_;
  CalendarService calendarService_{{.eventStore = desktop_.eventStore,
                                    .collator = desktop_.collator,
                                    .userCalendar = desktop_.userCalendar,
                                    .runLoop = desktop_.runLoop,
                                    .userDefaults = desktop_.userDefaults,
                                    .workspace = desktop_.workspace}};
  sim::SimTextMetrics metrics_;
  std::unique_ptr<view::HostingView> hosting_;
};

Rect hanging(Size size) { return {middle - size.width / 2, 0, size.width, size.height}; }

void expectNear(const Rect& actual, const Rect& expected) {
  EXPECT_NEAR(actual.x, expected.x, 1e-3);
  EXPECT_NEAR(actual.y, expected.y, 1e-3);
  EXPECT_NEAR(actual.width, expected.width, 1e-3);
  EXPECT_NEAR(actual.height, expected.height, 1e-3);
}

TEST_F(NotchRoot, PanelHasTheSizeAndCornersOfItsPresentation) {
  const struct {
    const char* what;
    Size notch;
    bool isExpanded, isBrightness, isVolume;
    Size panel;
    double radius;
  } rows[]{
      {"collapsed", {200, 32}, false, false, false, {200, 32}, 10},
      {"collapsed to a housing", {184, 37}, false, false, false, {184, 37}, 10},
      {"volume", {200, 32}, false, false, true, {280, 68}, 16},
      {"brightness", {184, 37}, false, true, false, {280, 73}, 16},
      {"brightness wins over volume", {200, 32}, false, true, true, {280, 68}, 16},
      {"expanded wins", {200, 32}, true, true, true, {580, 200}, 22},
      {"expanded below a tall housing", {200, 100}, true, false, false, {580, 236}, 22},
      {"notch without width", {0, 30}, false, false, true, {280, 66}, 16},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    model.isExpanded = row.isExpanded;
    model.isBrightnessHUDVisible = row.isBrightness;
    model.isVolumeHUDVisible = row.isVolume;
    show(row.notch);
    // The expanded panel takes its height from its content, with a spring.
    drawn();
    now += 10;
    const auto& panel = drawn().front();
    EXPECT_EQ(panel.color, Color::black());
    expectNear(panel.bounds, hanging(row.panel));
    EXPECT_EQ(panel.path, NotchShape{row.radius}.path(panel.bounds));
  }
}

TEST_F(NotchRoot, OnlyTheShownLayerIsDrawn) {
  show();
  EXPECT_EQ(drawn().size(), 1U) << "collapsed: nothing but the black panel";
  model.isExpanded = true;
  EXPECT_EQ(drawnIn(dividerColor).size(), 1U);
  EXPECT_TRUE(
      std::ranges::none_of(drawn(), [](const auto& item) { return item.text.ends_with('%'); }));
  model.isExpanded = false;
  model.isVolumeHUDVisible = true;
  EXPECT_TRUE(drawnIn(dividerColor).empty());
  EXPECT_EQ(textItem().text, "0%");
  model.isBrightnessHUDVisible = true;
  model.brightnessLevel = 0.25F;
  EXPECT_EQ(textItem().text, "25%") << "brightness wins over volume";
}

TEST_F(NotchRoot, ExpandedContentIsInsetAndOutlined) {
  model.isExpanded = true;
  show({184, 37});
  const Rect clock = textItem().bounds;
  EXPECT_NEAR(clock.x, middle - 268, 1e-3);
  EXPECT_NEAR(clock.y, 37 + 32, 1e-3);
  // Clock, divider and the rest share one top edge and stand 18 apart.
  const Rect divider = boxOf(dividerColor);
  EXPECT_NEAR(divider.y, clock.y, 1e-3);
  EXPECT_NEAR(divider.width, 1, 1e-3);
  const auto& outline = drawn().back();
  EXPECT_EQ(outline.kind, DisplayItem::Kind::stroke);
  EXPECT_EQ(outline.color, Color::white(0.06));
  EXPECT_EQ(outline.lineWidth, 0.5);
  EXPECT_TRUE(outline.clips.empty()) << "the outer half of the line shows too";
}

TEST_F(NotchRoot, IndicatorRowHasOneAxisInTheStripBelowTheNotch) {
  const struct {
    double notchHeight;
    bool isVolume;
    float level;
    double scale;
  } rows[]{
      {32, true, 0.5F, exact}, {32, true, 0.5F, 1}, {32, false, 1.0F, 1}, {37, true, 0.0F, 1},
      {37, true, 0.2F, 1.5},   {32, true, 0.8F, 2}, {37, false, 0.1F, 2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.scale);
    model.isVolumeHUDVisible = row.isVolume;
    model.isBrightnessHUDVisible = !row.isVolume;
    model.volumeLevel = row.level;
    model.brightnessLevel = row.level;
    show({200, row.notchHeight}, row.scale);
    const double left = middle - 140 + 18;
    const Rect symbol = symbolBox();
    EXPECT_GE(symbol.minX(), left);
    EXPECT_LE(symbol.maxX(), left + 18);
    const Rect track = boxOf(Color::white(0.18));
    expectNear(track, {left + 18 + 10, track.y, 170, 4});
    const auto& text = textItem();
    EXPECT_EQ(text.style.font,
              (view::Font{11, view::FontWeight::medium, view::FontDesign::rounded, true}));
    EXPECT_EQ(text.color, Color::white(0.7));
    const Rect percent = text.bounds;
    EXPECT_NEAR(percent.maxX(), middle + 140 - 18, textSlack + 1 / row.scale);
    for (const Rect& box : {symbol, percent}) {
      EXPECT_GE(box.minY(), row.notchHeight + 6);
      EXPECT_LE(box.maxY(), row.notchHeight + 36);
    }
    EXPECT_NEAR(symbol.midY(), track.midY(), 1e-3);
    EXPECT_LT(std::abs(percent.midY() - track.midY()) * row.scale, 1) << "in the same pixel row";
  }
}

TEST_F(NotchRoot, BarIsFilledByTheLevelAndKeepsADot) {
  constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
  const struct {
    bool isVolume;
    float level;
    bool isMuted;
    double width;
    double opacity;
  } rows[]{
      {true, 0.5F, false, 85, 1},        {true, 0.0F, false, 4, 1},     {true, 0.01F, false, 4, 1},
      {true, 0.8F, true, 4, 0.35},       {true, 1.5F, false, 170, 1},   {true, -1.0F, false, 4, 1},
      {true, notANumber, false, 170, 1}, {false, 0.25F, true, 42.5, 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.level);
    model.isVolumeHUDVisible = row.isVolume;
    model.isBrightnessHUDVisible = !row.isVolume;
    model.volumeLevel = row.isVolume ? row.level : 0;
    model.brightnessLevel = row.isVolume ? 0 : row.level;
    model.isMuted = row.isMuted;
    show();
    const Rect track = boxOf(Color::white(0.18));
    const auto filled = drawnIn(Color::white(row.opacity));
    const auto bar = std::ranges::find_if(
        filled, [&](const auto& item) { return std::abs(item.bounds.x - track.x) < 1e-3; });
    ASSERT_NE(bar, filled.end());
    expectNear(bar->path.bounds(), {track.x, track.y, row.width, 4});
  }
}

}  // namespace
}  // namespace valdrix
