#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "tests/architecture/IncludeRules.h"

namespace valdrix::tests {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<fs::path> sourceFiles() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(VALDRIX_SOURCE_FOLDER))
    if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
      files.push_back(entry.path());
  return files;
}

std::string contentsOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(Architecture, includesRunDownTheHouseOnly) {
  const auto files = sourceFiles();
  ASSERT_FALSE(files.empty()) << "nothing to read in " << VALDRIX_SOURCE_FOLDER;
  for (const auto& file : files) {
    const auto path = fs::relative(file, VALDRIX_SOURCE_FOLDER).generic_string();
    for (const auto& violation : includeViolations(path, contentsOf(file)))
      ADD_FAILURE() << "src/" << violation;
  }
}

TEST(IncludeRules, knowTheRoomOfAFile) {
  EXPECT_EQ(roomOf("view/Path.cpp"), "view");
  EXPECT_EQ(roomOf("desktop/x11/X11Screens.h"), "desktop/x11");
  EXPECT_EQ(roomOf("desktop/DesktopPlatform.h"), "desktop");
  EXPECT_EQ(roomOf("main.cpp"), "main");
  EXPECT_FALSE(isKnownRoom("helpers"));
  EXPECT_FALSE(isKnownRoom("desktop/helpers"));
}

struct IncludeCase {
  const char* path;
  const char* include;
  bool isAllowed;
};

void expectJudged(const std::vector<IncludeCase>& cases) {
  for (const auto& [path, include, isAllowed] : cases) {
    const auto violations = includeViolations(path, std::string("#include ") + include + '\n');
    EXPECT_EQ(violations.empty(), isAllowed) << path << " includes " << include;
  }
}

TEST(IncludeRules, letArrowsRunDownOnly) {
  expectJudged({{"view/Path.cpp", "\"view/Path.h\"", true},
                {"view/HostingView.h", "\"observation/Observer.h\"", true},
                {"app/AppDelegate.h", "\"observation/Token.h\"", true},
                {"view/Path.h", "\"platform/RunLoop.h\"", false},
                {"media/VolumeService.h", "\"calendar/CalendarService.h\"", false},
                {"notch/NotchWindow.h", "\"settings/SettingsView.h\"", false},
                {"app/AppDelegate.cpp", "\"sim/Trace.h\"", false},
                {"sim/Trace.cpp", "\"desktop/ui/QtCanvas.h\"", false},
                {"desktop/ui/QtCanvas.h", "\"sim/Trace.h\"", false},
                {"desktop/x11/X11Panel.h", "\"desktop/ui/QtCanvas.h\"", true},
                {"desktop/ui/QtCanvas.h", "\"desktop/x11/X11Panel.h\"", false},
                {"desktop/audio/Pulse.h", "\"media/VolumeService.h\"", false},
                {"desktop/DesktopPlatform.h", "\"desktop/audio/Pulse.h\"", true},
                {"commands/RunCommand.cpp", "\"desktop/DesktopPlatform.h\"", true},
                {"main.cpp", "\"commands/RunCommand.h\"", true},
                {"sim/Trace.cpp", "\"Trace.h\"", false},
                {"sim/Trace.cpp", "\"../view/Path.h\"", false},
                {"helpers/Text.h", "<string>", false}});
}

TEST(IncludeRules, keepLibrariesInTheirRooms) {
  expectJudged({{"view/Path.h", "<vector>", true},
                {"view/Path.h", "<QPainterPath>", false},
                {"sim/Trace.cpp", "<unistd.h>", false},
                {"sim/Trace.cpp", "<sys/stat.h>", false},
                {"app/ValdrixApp.h", "<pulse/pulseaudio.h>", false},
                {"desktop/audio/Pulse.h", "<pulse/pulseaudio.h>", true},
                {"desktop/ui/QtCanvas.cpp", "<QPainter>", true},
                {"desktop/ui/QtCanvas.cpp", "<xcb/xcb.h>", false},
                {"desktop/x11/X11Panel.cpp", "<xcb/xfixes.h>", true},
                {"desktop/x11/X11Panel.cpp", "<unistd.h>", true},
                {"desktop/x11/X11Panel.cpp", "<boost/any.hpp>", false},
                {"commands/RunCommand.cpp", "<QGuiApplication>", true},
                {"main.cpp", "<QGuiApplication>", false}});
}

TEST(IncludeRules, nameFileAndLineOfEachViolation) {
  const auto violations = includeViolations("view/Path.cpp",
                                            "#include \"view/Path.h\"\n"
                                            "// #include <QPainter> would be an arrow up\n"
                                            "#ifdef X\n"
                                            "#  include <QPainter>\n"
                                            "#endif\r\n"
                                            "#include\t\"app/AppDelegate.h\"\n");
  EXPECT_THAT(violations, ElementsAre("view/Path.cpp:4: view must not use <QPainter>",
                                      "view/Path.cpp:6: view must not know app: "
                                      "\"app/AppDelegate.h\""));
}

TEST(IncludeRules, acceptWhatQtGenerates) {
  EXPECT_THAT(includeViolations("desktop/ui/Tray.cpp", "#include \"Tray.moc\"\n"), IsEmpty());
}

}  // namespace

}  // namespace valdrix::tests
