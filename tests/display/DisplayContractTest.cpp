// What the displays and their brightness functions do, simulated and on the kernel's interface.

#include <cmath>
#include <gtest/gtest.h>
#include <optional>

#include "desktop/display/BacklightDisplayServices.h"
#include "sim/SimDisplayServices.h"
#include "tests/display/SysfsTree.h"
#include "tests/support/Unprivileged.h"

namespace valdrix {
namespace {

using platform::DisplayID;

struct SimulatedWorld {
  platform::Displays& displays() { return displays_; }
  platform::DisplayServices& services() { return services_; }
  void setPanelInUse(bool isInUse) { isInUse ? displays_.plug(1, true) : displays_.unplug(1); }
  void setMonitorInUse(bool isInUse) { isInUse ? displays_.plug(7, false) : displays_.unplug(7); }
  void setFromOutside(float level) { services_.backlight(1).level = level; }
  void failReads() { services_.backlight(1).getStatus = 5; }
  void refuseWrites() { services_.backlight(1).setStatus = 5; }

  sim::Trace trace_;
  sim::SimDisplays displays_;
  sim::SimDisplayServices services_{displays_, trace_};
};

struct BacklightWorld {
  BacklightWorld() {
    tree_.addBacklight("panel", "raw", "gpu0/drm/card0/card0-eDP-1");
    setMonitorInUse(false);
    setPanelInUse(true);
  }
  platform::Displays& displays() { return displays_; }
  platform::DisplayServices& services() { return services_; }
  void setPanelInUse(bool isInUse) { setConnector("card0-eDP-1", isInUse); }
  void setMonitorInUse(bool isInUse) { setConnector("card0-DP-1", isInUse); }
  void setConnector(const char* name, bool isInUse) {
    tree_.setConnector("gpu0", name, isInUse ? "connected" : "disconnected",
                       isInUse ? "enabled" : "disabled");
  }
  void setFromOutside(float level) {
    tree_.setBrightness("panel", static_cast<std::uint64_t>(std::lround(level * 960)));
  }
  void failReads() {
    unprivileged_.reset();
    tests::SysfsTree::write(tree_.backlightFile("panel", "brightness"), "");
  }
  void refuseWrites() {
    tree_.setWritable("panel", false);
    unprivileged_.emplace();
  }

  tests::SysfsTree tree_;
  desktop::BacklightDisplays displays_{tree_.root()};
  desktop::BacklightDisplayServices services_{displays_, tree_.root()};
  std::optional<tests::Unprivileged> unprivileged_;
};

template <class W>
class DisplayContract : public testing::Test {
 protected:
  void SetUp() override {
    world_.setPanelInUse(true);
    library_ = world_.services().open();
    ASSERT_TRUE(library_);
  }

  std::vector<DisplayID> list() { return world_.displays().getActiveDisplayList().value(); }
  std::optional<DisplayID> panel() {
    for (const auto display : list())
      if (world_.displays().isBuiltin(display)) return display;
    return std::nullopt;
  }
  /// The level, or nothing when reading fails.
  std::optional<float> level(DisplayID display) {
    float level = -7;
    const auto status = library_->getBrightness()(display, level);
    if (status == 0) return level;
    EXPECT_EQ(level, -7) << "a failing read leaves it alone";
    return std::nullopt;
  }
  bool set(DisplayID display, float level) {
    return library_->setBrightness()(display, level) == 0;
  }

  W world_;
  std::unique_ptr<platform::DisplayServicesLibrary> library_;
};

using Worlds = testing::Types<SimulatedWorld, BacklightWorld>;
TYPED_TEST_SUITE(DisplayContract, Worlds);

TYPED_TEST(DisplayContract, DisplaysComeAndGoUnderTheirOwnIDs) {
  const auto panel = this->panel();
  ASSERT_TRUE(panel);
  EXPECT_NE(*panel, 0U);
  this->world_.setMonitorInUse(true);
  ASSERT_EQ(this->list().size(), 2U);
  EXPECT_EQ(this->panel(), panel);
  this->world_.setPanelInUse(false);
  ASSERT_EQ(this->list().size(), 1U);
  EXPECT_NE(this->list()[0], *panel);
  EXPECT_EQ(this->panel(), std::nullopt);
  EXPECT_FALSE(this->world_.displays().isBuiltin(*panel));
  EXPECT_FALSE(this->world_.displays().isBuiltin(12345));
  this->world_.setPanelInUse(true);
  EXPECT_EQ(this->panel(), panel);
}

TYPED_TEST(DisplayContract, ALevelReadsBackAsItWasSet) {
  const auto panel = this->panel().value();
  EXPECT_TRUE(this->library_->canChangeBrightness()(panel));
  for (int i = 64; i >= 0; --i) {
    const float level = static_cast<float>(i) / 64;
    ASSERT_TRUE(this->set(panel, level));
    EXPECT_EQ(this->level(panel), level);
  }
  EXPECT_TRUE(this->set(panel, 7));
  EXPECT_EQ(this->level(panel), 1);
  EXPECT_TRUE(this->set(panel, -std::numeric_limits<float>::infinity()));
  EXPECT_EQ(this->level(panel), 0);
  EXPECT_FALSE(this->set(panel, std::nanf("")));
  EXPECT_EQ(this->level(panel), 0);
  this->world_.setFromOutside(0.2F);
  EXPECT_NEAR(this->level(panel).value(), 0.2, 0.001) << "whoever set it";
}

TYPED_TEST(DisplayContract, FailuresAreAStatusAndChangeNothing) {
  const auto panel = this->panel().value();
  ASSERT_TRUE(this->set(panel, 0.25F));
  this->world_.refuseWrites();
  EXPECT_FALSE(this->set(panel, 0.75F));
  EXPECT_EQ(this->level(panel), 0.25F);
  this->world_.failReads();
  EXPECT_EQ(this->level(panel), std::nullopt);
}

TYPED_TEST(DisplayContract, ADisplayThatIsNotThereHasNoBrightness) {
  const auto panel = this->panel().value();
  this->world_.setPanelInUse(false);
  ASSERT_EQ(this->panel(), std::nullopt);
  for (const DisplayID display : {panel, DisplayID{0}, DisplayID{12345}}) {
    EXPECT_FALSE(this->library_->canChangeBrightness()(display));
    EXPECT_EQ(this->level(display), std::nullopt);
    EXPECT_FALSE(this->set(display, 0.5F));
  }
}

}  // namespace
}  // namespace valdrix
