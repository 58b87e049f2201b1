// How the panel and the level's bar move, frame by frame, on the simulated desktop.

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "sim/Scenario.h"
#include "sim/ScenarioPlayer.h"

namespace valdrix::sim {
namespace {

using view::DisplayItem;

/// The largest part of its way that a spring of damping fraction 0.48 swings past its end:
/// exp(-π ζ / √(1 - ζ²)) is 0.179.
constexpr double overshoot = 0.18;
/// Half a pixel: edges that rest are put on pixels, moving ones are not.
constexpr double rounding = 0.5;
constexpr int frames = 90;

/// What one frame shows, in points.
struct Picture {
  double width = 0;
  double height = 0;
  std::optional<double> fill{};  ///< of the level's bar
};

Picture pictureOf(const view::DisplayList& list) {
  Picture picture{list.front().bounds.width, list.front().bounds.height};
  const auto track = std::ranges::find_if(list, [](const DisplayItem& item) {
    return item.kind == DisplayItem::Kind::fill && std::abs(item.bounds.width - 170) < 1 &&
           std::abs(item.bounds.height - 4) < 1;
  });
  if (track == list.end()) return picture;
  const auto fill = track + 1;
  EXPECT_EQ(fill->bounds.x, track->bounds.x);
  EXPECT_LE(fill->bounds.maxX(), track->bounds.maxX());
  picture.fill = fill->bounds.width;
  return picture;
}

/// The frames from two seconds on, when `change` happens.
std::vector<Picture> film(const std::string& before, const std::string& change) {
  ScenarioPlayer player;
  player.play(Scenario::parse("laptop\npreference hudDuration 9\n" + before + "\nat 2"));
  player.play(Scenario::parse(change));
  std::vector<Picture> pictures;
  for (int frame = 0; frame < frames; ++frame) {
    pictures.push_back(
        pictureOf(player.desktop().panelWindows.frontWindow()->content()->displayList()));
    player.desktop().runLoop.advance(1.0 / 60);
  }
  return pictures;
}

/// From `from` straight to `to`, and from then on no further away than a spring swings.
void expectOneSpring(const std::vector<double>& values, double from, double to) {
  const double way = to - from;
  if (way == 0) {
    for (const double value : values) EXPECT_EQ(value, to);
    return;
  }
  const auto done = [&](double value) { return (value - from) / way; };
  const double slack = rounding / std::abs(way);
  double furthest = 0;
  for (const double value : values) {
    EXPECT_TRUE(furthest >= 1 || done(value) >= furthest - slack) << value;
    EXPECT_LE(std::abs(done(value) - 1), std::max(1 - furthest + slack, overshoot)) << value;
    furthest = std::max(furthest, done(value));
  }
  EXPECT_LT(done(values.front()), 0.35) << values.front();
  EXPECT_NEAR(values.back(), to, rounding);
}

std::vector<double> measured(const std::vector<Picture>& film,
                             const std::function<std::optional<double>(const Picture&)>& measure) {
  std::vector<double> values;
  for (const auto& picture : film)
    if (const auto value = measure(picture)) values.push_back(*value);
  return values;
}

TEST(Motion, IsOneSpringFromWhatWasShownToWhatIsToCome) {
  struct Way {
    double from, to;
  };
  const struct {
    const char* what;
    const char* before;
    const char* change;
    Way width, height;
    std::optional<Way> fill;
  } rows[]{
      {"first indicator", "launch", "press volume-up", {200, 280}, {32, 68}, {{0, 95.6}}},
      {"first indicator of a new window",
       "device volume speakers 0.8\nlaunch\npress volume-down\nat 1.9 screen add eDP-1 0 0 1280 "
       "800",
       "device volume speakers 0.2",
       {280, 280},
       {68, 68},
       {{125, 34}}},
      {"enter the volume", "launch\npress volume-up", "pointer 756 940", {280, 580}, {68, 200}, {}},
      {"enter the brightness",
       "launch\npress brightness-up",
       "pointer 756 940",
       {280, 580},
       {68, 200},
       {}},
      {"enter an indicator that comes",
       "launch\nat 1.9 press volume-up",
       "pointer 756 960",
       {200, 580},
       {32, 200},
       {}},
      {"collapse", "launch\npointer 756 960", "pointer 100 100", {580, 200}, {200, 32}, {}},
      {"mute",
       "device volume speakers 0.7375\nlaunch\npress volume-up",
       "press mute",
       {280, 280},
       {68, 68},
       {{136, 4}}},
      {"a little louder",
       "launch\npress volume-up",
       "press volume-up with shift",
       {280, 280},
       {68, 68},
       {{95.6, 98.3}}},
      {"louder",
       "device volume speakers 0.4975\nlaunch\npress volume-up",
       "device volume speakers 1",
       {280, 280},
       {68, 68},
       {{95.2, 170}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const auto pictures = film(row.before, row.change);
    expectOneSpring(measured(pictures, &Picture::width), row.width.from, row.width.to);
    expectOneSpring(measured(pictures, &Picture::height), row.height.from, row.height.to);
    if (row.fill) expectOneSpring(measured(pictures, &Picture::fill), row.fill->from, row.fill->to);
  }
}

TEST(Motion, PanelThatMovesToAnotherScreenIsCollapsedFromItsFirstFrame) {
  const auto pictures =
      film("screen add DP-1 1512 0 1920 1080\nlaunch\npointer 756 960", "screen remove eDP-1");
  for (const auto& picture : pictures) {
    EXPECT_EQ(picture.width, 200);
    EXPECT_EQ(picture.height, 32);
  }
}

}  // namespace
}  // namespace valdrix::sim
