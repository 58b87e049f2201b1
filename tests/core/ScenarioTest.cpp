// How scenarios are read, judged and painted. What they can do is shown by tests/scenarios.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <vector>

#include "sim/Scenario.h"
#include "sim/ScenarioError.h"
#include "sim/ScenarioPlayer.h"
#include "sim/Simulate.h"
#include "sim/TraceChannels.h"

namespace valdrix::sim {
namespace {

namespace fs = std::filesystem;

/// The line that a scenario fails in; 0 when it plays.
int failingLine(const std::string& text) {
  try {
    ScenarioPlayer().play(Scenario::parse(text));
    return 0;
  } catch (const ScenarioError& error) {
    EXPECT_FALSE(std::string(error.what()).empty());
    return error.line();
  }
}

TEST(Scenario, NamesTheLineThatMakesNoSense) {
  const struct {
    const char* text;
    int line;
  } rows[]{
      {"", 0},
      {"# nothing\n\nlaptop # one\r\nlaunch\n---\nanything goes here", 0},
      {"laptop\nlaunch\ndance", 3},
      {"at", 1},
      {"at nan launch", 1},
      {"laptop\nat 2\nat 1 launch", 3},
      {"launch\nlaunch", 2},
      {"quit", 1},
      {"show model", 1},
      {"screen add \"eDP 1\" 0 0 1512 982", 0},
      {"screen add \"eDP 1 0 0 1512 982", 1},
      {"screen add eDP-1 0 0 1512 982 scale 0", 1},
      {"screen add eDP-1 0 0 1512 982 housing 2000 32", 1},
      {"device add speakers volume 1.5", 1},
      {"device volume speakers 0.5", 1},
      {"display add 1 built-in steps 0", 1},
      {"press mute with", 1},
      {"press volume-sideways", 1},
      {"pointer 1", 1},
      {"key mute repeat 0", 1},
      {"laptop\nlaunch\npicture ../a.png", 3},
      {"date 2026-02-29 09:00", 1},
      {"zone +01:00 then +02:00 since 2026-03-29 01:00 then +01:00 since 2026-03-29 01:00", 1},
      {"calendar add home color ff95", 1},
      {"event add a home today 10:00 until 11:00", 1},
      {"calendar add home\nevent add a home today 10:00 until 11:00 days 3", 2},
      {"calendar add home\nevent add a home today 10:00 until 09:00", 2},
      {"request-access granted", 1},
      {"menu open", 1},
      {"launch\nmenu choose Dance", 2},
      {"launch\nsettings flip Dance", 2},
      {"launch\nsettings open\nsettings click Dance", 3},
      {"launch\nreport settings", 2},
      {"website answers 99", 1},
  };
  for (const auto& row : rows) EXPECT_EQ(failingLine(row.text), row.line) << row.text;
}

TEST(Trace, HasADocumentedChannelForEveryLine) {
  ScenarioPlayer player;
  player.play(Scenario::parse(
      "laptop\ntrust refused\nlaunch\ntrust granted\nat 3\npress volume-up\npress brightness-up\n"
      "press code 9\nat 5 pointer 756 970\nclick\nreport timers\nreport frames\npicture a.png\n"
      "tap timeout\nscreen remove eDP-1\ncalendar add home\n"
      "event add a home tomorrow all-day\nrequest-access granted\nat 6 screen add X 0 0 800 600\n"
      "pointer 400 590\nat 7 pointer 500 500\nreport texts\nclick\nquit"));
  for (const auto& line : player.desktop().trace.lines())
    EXPECT_TRUE(isTraceChannel(line.text.substr(0, line.text.find(' ')))) << line.text;
}

class SimulateFile : public testing::Test {
 protected:
  SimulateFile() { fs::create_directories(folder_); }
  ~SimulateFile() override { fs::remove_all(folder_); }

  int play(const std::string& text, FramePainter* painter = nullptr) {
    std::ofstream(file()) << text;
    return simulate({.file = file(), .framesFolder = folder_ / "new" / "frames", .scale = 2}, out,
                    errors, painter);
  }
  [[nodiscard]] fs::path file() const { return folder_ / "scenario.txt"; }

  std::ostringstream out;
  std::ostringstream errors;

 private:
  const fs::path folder_ =
      fs::path(testing::TempDir()) /
      ("valdrix-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(SimulateFile, ExitCodeTellsHowItWent) {
  const std::string scenario = "show presentation\nlaptop\nlaunch\nat 1 press mute\n";
  EXPECT_EQ(play(scenario), 0);
  EXPECT_EQ(out.str(), "         1  presentation volumeHUD\n");
  EXPECT_EQ(play(scenario + "---\n\n# as above\n1 presentation\tvolumeHUD  \n"), 0);
  EXPECT_EQ(errors.str(), "");
  EXPECT_EQ(play(scenario + "---\n1 presentation expanded\n"), 1);
  EXPECT_NE(errors.str().find("> 1 presentation volumeHUD\n"), std::string::npos) << errors.str();
}

TEST_F(SimulateFile, SaysWhereAScenarioIsWrong) {
  EXPECT_EQ(play("laptop\nlunch\n"), 2);
  EXPECT_EQ(errors.str().rfind(file().string() + ":2: ", 0), 0U) << errors.str();
  EXPECT_EQ(simulate({.file = file().string() + ".missing"}, out, errors, nullptr), 2);
  EXPECT_EQ(simulate({.file = file().parent_path()}, out, errors, nullptr), 2);
  EXPECT_EQ(out.str(), "");
}

TEST_F(SimulateFile, PicturesShowThePanelWithRoomAroundIt) {
  struct Painter : FramePainter {
    bool paint(const view::HostingView& content, const view::Rect& part, double scale,
               const fs::path& file) override {
      EXPECT_FALSE(content.displayList().empty());
      for (const auto& item : content.displayList())
        if (item.kind == view::DisplayItem::Kind::text) {
          EXPECT_EQ(item.bounds.y * scale, std::round(item.bounds.y * scale));
          onHalfPoints += item.bounds.y != std::round(item.bounds.y) ? 1 : 0;
        }
      EXPECT_TRUE(fs::is_directory(file.parent_path()));
      EXPECT_EQ(scale, 2);
      parts.push_back(part);
      return file.filename() != "unwritable.png";
    }
    std::vector<view::Rect> parts;
    int onHalfPoints = 0;
  } painter;
  const std::string scenario =
      "laptop\nlaunch\npicture collapsed.png\nat 1 pointer 756 970\nat 9 picture expanded.png\n";
  EXPECT_EQ(play(scenario, &painter), 0);
  // The outline's outer half reaches over the expanded panel's edge.
  const std::vector<view::Rect> expected{{240, 0, 240, 52}, {49.5, 0, 621, 220.5}};
  EXPECT_EQ(painter.parts, expected);
  EXPECT_GT(painter.onHalfPoints, 0) << "laid out as on a screen of that scale";
  EXPECT_EQ(play(scenario + "picture unwritable.png\n", &painter), 2);
}

}  // namespace
}  // namespace valdrix::sim
