#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "desktop/session/ProgramPages.h"

namespace valdrix::desktop {
namespace {

/// Pages of files that are in memory, in kB.
long residentFilePages() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("RssFile:")) return std::stol(line.substr(sizeof "RssFile:"));
  return 0;
}

TEST(ProgramPages, LeaveTheProcessAndComeBackWhenTheyAreUsed) {
  const long before = residentFilePages();
  releaseProgramPages();
  EXPECT_LT(residentFilePages(), before / 2);
  EXPECT_THROW((void)std::stol("not a number"), std::invalid_argument);
}

}  // namespace
}  // namespace valdrix::desktop
