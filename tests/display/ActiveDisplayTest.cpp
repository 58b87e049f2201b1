// Which backlight is the built-in panel's, on machines as they come.

#include <gtest/gtest.h>
#include <sstream>

#include "desktop/display/ActiveDisplay.h"
#include "tests/display/SysfsTree.h"

namespace valdrix::desktop {
namespace {

struct Machine {
  const char* name;
  /// One thing a line: `connector DEVICE NAME STATUS ENABLED` or `backlight NAME TYPE [DEVICE]`.
  const char* description;
  const char* display;    ///< the built-in display's name; empty: none
  const char* backlight;  ///< its backlight's name; empty: none
};

const Machine machines[] = {
    {"nothing at all", "", "", ""},
    {"lid closed, picture on a monitor",
     R"(connector gpu0 card0-eDP-1 connected disabled
        connector gpu0 card0-HDMI-A-1 connected enabled
        backlight intel_backlight raw gpu0/drm/card0/card0-eDP-1
        backlight acpi_video0 firmware gpu0)",
     "", ""},
    {"a driver that never says enabled",
     R"(connector gpu0 card0-eDP-1 connected disabled
        connector gpu0 card0-DP-1 disconnected disabled
        backlight nvidia_0 raw gpu0)",
     "card0-eDP-1", "nvidia_0"},
    {"firmware and raw on one panel",
     R"(connector gpu0 card0-eDP-1 connected enabled
        backlight intel_backlight raw gpu0/drm/card0/card0-eDP-1
        backlight acpi_video0 firmware gpu0)",
     "card0-eDP-1", "acpi_video0"},
    {"platform before raw",
     R"(connector gpu0 card0-LVDS-1 connected enabled
        backlight a_raw raw gpu0/drm/card0/card0-LVDS-1
        backlight thinkpad_screen platform thinkpad_acpi)",
     "card0-LVDS-1", "thinkpad_screen"},
    {"two cards, the second one's backlight is dead",
     R"(connector gpu0 card0-eDP-1 connected enabled
        connector gpu1 card1-HDMI-A-1 disconnected disabled
        backlight a_dead_one raw gpu1
        backlight intel_backlight raw gpu0/drm/card0/card0-eDP-1)",
     "card0-eDP-1", "intel_backlight"},
    {"two cards, the panel is switched to the second",
     R"(connector gpu0 card0-eDP-1 disconnected disabled
        connector gpu1 card1-eDP-2 connected enabled
        backlight amdgpu_bl0 raw gpu0/drm/card0/card0-eDP-1
        backlight nvidia_0 raw gpu1)",
     "card1-eDP-2", "nvidia_0"},
    {"two cards, two firmware interfaces",
     R"(connector gpu0 card0-DP-1 disconnected disabled
        connector gpu1 card1-eDP-1 connected enabled
        backlight acpi_video0 firmware gpu0
        backlight acpi_video1 firmware gpu1)",
     "card1-eDP-1", "acpi_video1"},
    {"an older driver, below the card",
     R"(connector gpu0 card0-eDP-1 connected enabled
        connector gpu0 card0-DP-1 connected enabled
        backlight amdgpu_bl0 raw gpu0/drm/card0)",
     "card0-eDP-1", "amdgpu_bl0"},
    {"no graphics card known, no device", "backlight backlight platform", "backlight", "backlight"},
    {"a panel beside its driver",
     R"(connector display-subsystem card0-DSI-1 connected enabled
        backlight backlight raw backlight-node)",
     "card0-DSI-1", "backlight"},
    {"monitors only, each with a backlight",
     R"(connector gpu0 card0-DP-1 connected enabled
        backlight ddcci5 raw gpu0/drm/card0/card0-DP-1/i2c-5/ddcci5
        backlight ddcci6 raw gpu0/i2c-6/ddcci6
        backlight external raw gpu0/drm/card0/card0-DP-1
        backlight appledisplay0 raw usb1/1-2/1-2:1.1)",
     "", ""},
    {"a panel and a monitor with a backlight",
     R"(connector gpu0 card0-DP-1 connected enabled
        connector gpu0 card0-eDP-1 connected enabled
        backlight ddcci5 raw gpu0/i2c-5/ddcci5
        backlight intel_backlight raw gpu0/drm/card0/card0-eDP-1)",
     "card0-eDP-1", "intel_backlight"},
    {"a panel without a backlight",
     R"(connector gpu0 card0-HDMI-A-1 connected enabled
        connector gpu0 card0-eDP-1 connected enabled)",
     "card0-eDP-1", ""},
    {"two panels",
     R"(connector gpu0 card0-eDP-1 connected enabled
        connector gpu0 card0-eDP-2 connected enabled
        backlight intel_backlight raw gpu0/drm/card0/card0-eDP-1
        backlight card0-eDP-2-backlight raw gpu0/drm/card0/card0-eDP-2)",
     "card0-eDP-2", "card0-eDP-2-backlight"},
};

void build(tests::SysfsTree& tree, const char* description) {
  std::istringstream lines(description);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string what;
    std::string a;
    std::string b;
    std::string c;
    std::string d;
    words >> what >> a >> b >> c >> d;
    if (what == "connector") tree.setConnector(a, b, c, d);
    if (what == "backlight") tree.addBacklight(a, b, c);
  }
}

TEST(ActiveDisplay, TheBuiltInPanelsBacklightIsFound) {
  for (const auto& machine : machines) {
    tests::SysfsTree tree;
    build(tree, machine.description);
    const auto snapshot = readBacklightTree(tree.root());
    ASSERT_TRUE(snapshot) << machine.name;
    std::string display;
    std::string backlight;
    for (const auto& active : activeDisplays(*snapshot)) {
      if (!active.isBuiltin || !display.empty()) continue;
      display = active.name;
      backlight = active.backlight ? active.backlight->name : "";
    }
    EXPECT_EQ(display, machine.display) << machine.name;
    EXPECT_EQ(backlight, machine.backlight) << machine.name;
  }
}

TEST(ActiveDisplay, ABacklightWithoutARangeIsNone) {
  for (const auto* const max : {"0\n", "", "junk\n", "-5\n", "99999999999999999999\n"}) {
    tests::SysfsTree tree;
    tree.addBacklight("broken", "firmware", "gpu0");
    tree.addBacklight("works", "raw", "gpu0");
    tests::SysfsTree::write(tree.backlightFile("broken", "max_brightness"), max);
    const auto displays = activeDisplays(*readBacklightTree(tree.root()));
    ASSERT_EQ(displays.size(), 1U) << max;
    EXPECT_EQ(displays[0].backlight->name, "works") << max;
  }
}

}  // namespace
}  // namespace valdrix::desktop
