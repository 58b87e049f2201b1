// Which backlight is the built-in panel's, on machines as they come.

#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>

#include "desktop/display/ActiveDisplay.h"
#include "tests/display/SysfsTree.h"

namespace valdrix::desktop {
namespace {

/// The built-in display and its backlight, as far as there are any.
std::string builtinOf(const tests::SysfsTree& tree) {
  const auto snapshot = readBacklightTree(tree.root());
  if (!snapshot) return "nothing was read";
  for (const auto& display : activeDisplays(*snapshot))
    if (display.isBuiltin)
      return " " + display.name + (display.backlight ? " " + display.backlight->name : "");
  return "";
}

TEST(ActiveDisplay, TheBuiltInPanelsBacklightIsFound) {
  std::ifstream file(MACHINES);
  std::optional<tests::SysfsTree> tree;
  std::string machine;
  int count = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string what, a, b, c, d;
    words >> what >> a >> b >> c >> d;
    if (what == "=") {
      machine = line;
      tree.emplace();
    } else if (what == "connector") {
      tree->setConnector(a, b, c, d);
    } else if (what == "backlight") {
      tree->addBacklight(a, b, c);
    } else if (what == ">") {
      EXPECT_EQ('>' + builtinOf(*tree), line) << machine;
      ++count;
    }
  }
  EXPECT_GT(count, 0);
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
