// What is particular to backlights: who may write them, and values that are not levels.

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

#include "desktop/display/BacklightDisplayServices.h"
#include "desktop/display/BacklightLevel.h"
#include "tests/display/SysfsTree.h"
#include "tests/display/SystemBus.h"
#include "tests/support/Unprivileged.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

Backlight backlight(Backlight::Type type, std::uint64_t max) {
  Backlight backlight;
  backlight.type = type;
  backlight.maxBrightness = max;
  return backlight;
}

TEST(BacklightLevel, StaysExactWithHugeMaximums) {
  using enum Backlight::Type;
  constexpr auto most = std::numeric_limits<std::uint64_t>::max();
  for (const auto max : {std::uint64_t{16}, std::uint64_t{255}, std::uint64_t{4294967295}, most}) {
    const auto panel = backlight(firmware, max);
    EXPECT_EQ(brightnessFromLevel(panel, 0), 0U);
    EXPECT_EQ(brightnessFromLevel(panel, 1), max);
    EXPECT_EQ(levelFromBrightness(panel, max), 1);
    std::uint64_t last = 0;
    for (int i = 1; i <= 16; ++i) {
      const float level = static_cast<float>(i) / 16;
      const auto brightness = brightnessFromLevel(panel, level);
      EXPECT_GT(brightness, last) << max;
      EXPECT_NEAR(levelFromBrightness(panel, brightness), level,
                  0.5 / static_cast<double>(max) + 1e-7)
          << max;
      last = brightness;
    }
  }
  EXPECT_EQ(brightnessFromLevel(backlight(raw, 4294967296), 0.5F), 2147483648U);
  EXPECT_EQ(levelFromBrightness(backlight(raw, 100), 250), 1) << "beyond the maximum";
}

TEST(BacklightLevel, TheDarkestIsStillVisible) {
  using enum Backlight::Type;
  struct Case {
    Backlight::Type type;
    std::uint64_t max;
    std::uint64_t darkest;
  };
  for (const auto& [type, max, darkest] :
       {Case{firmware, 15, 0}, Case{firmware, 96000, 0}, Case{raw, 96000, 960}, Case{raw, 7, 1},
        Case{platform, 255, 2}, Case{platform, 1, 1}})
    EXPECT_EQ(brightnessFromLevel(backlight(type, max), 0), darkest) << max;
}

class BacklightTest : public testing::Test {
 protected:
  /// Makes the one backlight of this machine.
  void addPanel(std::uint64_t max = 960, const char* type = "raw") {
    tree_.addBacklight(panel_, type, "gpu0", max);
    library_ = services_.open();
    ASSERT_TRUE(library_);
  }
  platform::DisplayID panel() { return displays_.getActiveDisplayList().value().at(0); }
  bool canChange() { return library_->canChangeBrightness()(panel()); }
  float level() {
    float level = -1;
    EXPECT_EQ(library_->getBrightness()(panel(), level), 0);
    return level;
  }
  bool set(float level) { return library_->setBrightness()(panel(), level) == 0; }
  /// One press of a key: read, add, write.
  bool step(float delta) { return set(std::clamp(level() + delta, 0.0F, 1.0F)); }

  void startBus() { ASSERT_NO_FATAL_FAILURE(bus_.start()); }
  void startLogin1(const char* behaviour) {
    const auto folder = QString::fromStdString((tree_.root() / "class" / "backlight").string());
    ASSERT_NO_FATAL_FAILURE(bus_.startLogin1(behaviour, folder));
  }

  const std::string panel_ = "panel";
  tests::SysfsTree tree_;
  tests::SystemBus bus_;
  BacklightDisplays displays_{tree_.root()};
  BacklightDisplayServices services_{displays_, tree_.root()};
  std::unique_ptr<platform::DisplayServicesLibrary> library_;
};

TEST_F(BacklightTest, SmallStepsGetThroughCoarsePanels) {
  addPanel();
  for (const std::uint64_t max : {2, 7, 15}) {
    SCOPED_TRACE(max);
    tests::SysfsTree::write(tree_.backlightFile(panel_, "max_brightness"), std::to_string(max));
    tree_.setBrightness(panel_, max);
    for (int press = 1; press <= 64; ++press) {
      ASSERT_TRUE(step(-1.0F / 64));
      EXPECT_EQ(level(), static_cast<float>(64 - press) / 64);
    }
    EXPECT_EQ(tree_.brightness(panel_), std::max<std::uint64_t>(1, max / 100));
    for (int press = 0; press < 64; ++press) ASSERT_TRUE(step(1.0F / 64));
    EXPECT_EQ(level(), 1);
    EXPECT_EQ(tree_.brightness(panel_), max);
  }
}

TEST_F(BacklightTest, FirmwareIsAskedWhatItMadeOfTheValue) {
  addPanel(10, "firmware");
  ASSERT_TRUE(set(0.8F));
  tests::SysfsTree::write(tree_.backlightFile(panel_, "actual_brightness"), "6\n");
  EXPECT_FLOAT_EQ(level(), 0.6F);
  tests::SysfsTree::write(tree_.backlightFile(panel_, "actual_brightness"), "");
  EXPECT_FLOAT_EQ(level(), 0.8F);
}

TEST_F(BacklightTest, ASystemWithoutTheClassHasNoLibrary) {
  std::filesystem::remove_all(tree_.root() / "class" / "backlight");
  EXPECT_FALSE(services_.open());
  std::filesystem::remove_all(tree_.root() / "class");
  EXPECT_EQ(displays_.getActiveDisplayList(), std::nullopt);
}

TEST_F(BacklightTest, WhoMayWriteDecidesAndBusAndManagerMayComeAndGo) {
  addPanel();
  const auto expect = [&](const char* when, bool canChange, float level, bool succeeds) {
    SCOPED_TRACE(when);
    const float before = this->level();
    {
      const tests::Unprivileged unprivileged;
      EXPECT_EQ(this->canChange(), canChange);
      EXPECT_EQ(set(level), succeeds);
    }
    EXPECT_EQ(this->level(), succeeds ? level : before);
  };
  tree_.setWritable(panel_, true);
  expect("the file is enough", true, 0.05F, true);
  tree_.setWritable(panel_, false);
  expect("no bus", false, 0.1F, false);
  startBus();
  expect("no manager", false, 0.2F, false);
  startLogin1("write");
  expect("all there", true, 0.25F, true);
  EXPECT_EQ(tree_.brightness(panel_), 240U);
  bus_.stop();
  expect("the bus died", false, 0.4F, false);
  startBus();
  startLogin1("write");
  expect("the bus returned", true, 0.5F, true);
  bus_.stop();
  startBus();
  startLogin1("write");
  expect("the bus died and returned between two calls", true, 0.625F, true);
  startLogin1("deny");
  EXPECT_TRUE(services_.access().isGranted());
  int changes = 0;
  const auto observer = services_.access().observe([&changes] { ++changes; });
  expect("denied", true, 0.75F, false);
  EXPECT_FALSE(services_.access().isGranted());
  startLogin1("write");
  services_.access().check();
  EXPECT_TRUE(tests::waitFor([this] { return services_.access().isGranted(); }));
  EXPECT_EQ(changes, 2);
  expect("allowed again", true, 0.75F, true);
  bus_.stop();
  std::filesystem::create_directories(tree_.root() / "run" / "systemd" / "seats");
  expect("the manager belongs here and will come", true, 0.875F, false);
  tests::SysfsTree::write(tree_.backlightFile(panel_, "max_brightness"), "1\n");
  EXPECT_FALSE(canChange()) << "a switch has no range";
}

TEST_F(BacklightTest, AManagerThatHangsIsLeftAlone) {
  addPanel();
  tree_.setWritable(panel_, false);
  startBus();
  startLogin1("hang");
  {
    const tests::Unprivileged unprivileged;
    for (int press = 0; press < 30; ++press) EXPECT_FALSE(set(0.75F));
  }
  EXPECT_FLOAT_EQ(level(), 0.5F);
  ASSERT_TRUE(tests::waitFor([&] { return bus_.login1Calls() > 0; }));
  EXPECT_EQ(bus_.login1Calls(), 1);
}

}  // namespace
}  // namespace valdrix::desktop
