#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <sys/stat.h>

#include "desktop/screens/CameraHousings.h"

namespace valdrix::desktop {
namespace {

using platform::Screen;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using view::Rect;

class CameraHousingsTest : public testing::Test {
 protected:
  void write(const QString& path, const QByteArray& content) {
    const QString whole = folder.filePath(path);
    QDir().mkpath(QFileInfo(whole).path());
    QFile file(whole);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
  }
  CameraHousings housings(const QString& notch = {}) {
    return CameraHousings({notch, folder.filePath("housings.json"), folder.path()});
  }
  static std::vector<Screen> applied(const CameraHousings& housings, std::vector<Screen> screens) {
    housings.applyTo(screens);
    return screens;
  }
  static double inset(const CameraHousings& housings) {
    return applied(housings, {screen("eDP-1", 1000, 800)})[0].safeAreaInsetTop;
  }

  static Screen screen(const std::string& name, double width, double height, double scale = 1) {
    return {.name = name, .frame = {100, 50, width, height}, .scale = scale};
  }

  QTemporaryDir folder;
};

TEST_F(CameraHousingsTest, NoneWhereNothingIsKnown) {
  const std::vector<Screen> screens{screen("eDP-1", 1920, 1200), screen("HDMI-1", 1920, 1080)};
  EXPECT_EQ(applied(housings(), screens), screens);
  EXPECT_THAT(applied(housings("200x32"), {}), IsEmpty());
}

TEST_F(CameraHousingsTest, TheEnvironmentWinsAndSpeaksOfThePanelOrElseTheMainScreen) {
  write("housings.json", R"({"x-res": 1000, "y-res": 800, "cutouts": [{"path": "M0 0H9V9z"}]})");
  const auto both =
      applied(housings("200x32"), {screen("HDMI-1", 1000, 800), screen("eDP-1", 1000, 800)});
  EXPECT_EQ(both[0].safeAreaInsetTop, 0);
  EXPECT_EQ(both[1].safeAreaInsetTop, 32);
  EXPECT_EQ(both[1].auxiliaryTopLeftArea, (Rect{100, 818, 400, 32}));
  EXPECT_EQ(both[1].auxiliaryTopRightArea, (Rect{700, 818, 400, 32}));
  EXPECT_EQ(applied(housings("150.5x37.5"), {screen("HDMI-1", 1000, 800)})[0].safeAreaInsetTop,
            37.5);
  const auto wide = applied(housings("5000x5000"), {screen("HDMI-1", 1000, 800)})[0];
  EXPECT_EQ(wide.auxiliaryTopLeftArea->width, 0) << "never more than the screen";
  EXPECT_EQ(wide.safeAreaInsetTop, 800);
  for (const char* wrong : {"200", "x32", "0x32", "-5x32", "axb", "200x32x1", "200 x 32"}) {
    EXPECT_THAT(housings(wrong).problems(), ElementsAre(HasSubstr("VALDRIX_NOTCH"))) << wrong;
    EXPECT_NE(applied(housings(wrong), {screen("eDP-1", 1000, 800)})[0].safeAreaInsetTop, 32);
  }
}

TEST_F(CameraHousingsTest, TheUsersFileNamesPanels) {
  write("housings.json", R"([
    {"name": "another", "x-res": 3000, "y-res": 2000, "cutouts": [{"path": "M0 0H100V100z"}]},
    {"name": "mine", "x-res": 2000, "y-res": 1600, "cutouts": [
      {"name": "camera", "path": "M 900 0 h 200 v 60 h -200 z"},
      {"name": "speaker", "path": "M 900 1500 h 200 v 60 h -200 z"}]}])");
  const auto known = housings();
  EXPECT_THAT(known.problems(), IsEmpty());
  const auto found = applied(known, {screen("eDP-1", 1000, 800, 2)})[0];
  EXPECT_EQ(found.safeAreaInsetTop, 30) << "points";
  EXPECT_EQ(found.auxiliaryTopLeftArea, (Rect{100, 820, 450, 30}));
  EXPECT_EQ(found.auxiliaryTopRightArea, (Rect{650, 820, 450, 30}));
  EXPECT_EQ(applied(known, {screen("eDP-1", 500, 400)})[0].safeAreaInsetTop, 15)
      << "a picture scaled by the graphics card";
  EXPECT_EQ(applied(known, {screen("eDP-1", 1000, 750)})[0].safeAreaInsetTop, 0) << "another shape";
  EXPECT_EQ(applied(known, {screen("DP-1", 1000, 800)})[0].safeAreaInsetTop, 0) << "not built in";
}

TEST_F(CameraHousingsTest, WrongPartsOfTheFileAreNamedAndLeftOut) {
  write("housings.json", "[\n {\"x-res\": 1,\n \"y-res\" 2}]");
  EXPECT_THAT(housings().problems(), ElementsAre(HasSubstr("housings.json:3 : ")));
  write("housings.json", R"([{"name": "a", "x-res": "wide", "y-res": 1600},
{"name": "b", "x-res": 1000, "y-res": 800, "cutouts": [
  {"path": "M 400 nonsense"}, {"path": "M 450 0 h 100 v 30 h -100 z"}]}])");
  const auto known = housings();
  EXPECT_THAT(known.problems(),
              ElementsAre(HasSubstr("housings.json:1 : "), HasSubstr("housings.json:3 : ")));
  EXPECT_EQ(applied(known, {screen("eDP-1", 1000, 800)})[0].safeAreaInsetTop, 30);
  for (const char* text : {"3", "null", "[[], 5, \"x\"]", "{}", "[", "\"\\ud800\""}) {
    write("housings.json", text);
    EXPECT_EQ(applied(housings(), {screen("eDP-1", 1000, 800)})[0].safeAreaInsetTop, 0) << text;
  }
  const auto file = folder.filePath("housings.json");
  for (const char* endless : {"/dev/zero", "fifo"}) {
    QFile::remove(file);
    QFile::link(endless, file);
    ::mkfifo(folder.filePath("fifo").toUtf8().constData(), 0600);
    EXPECT_THAT(housings().problems(), ElementsAre(HasSubstr("un fichier lisible"))) << endless;
  }
}

TEST_F(CameraHousingsTest, WhatIsTriedOrWrittenMeanwhileCounts) {
  const auto file = [](int height) {
    return QByteArray(R"({"name": "mine", "x-res": 1000, "y-res": 800, "cutouts": [)"
                      R"({"path": "M 400 0 h 200 v )") +
           QByteArray::number(height) + " h -200 z\"}]}";
  };
  write("housings.json", file(30));
  auto known = housings();
  int changes = 0;
  const auto token = known.observeChanges([&] { ++changes; });
  known.setPreview(view::Size{185, 32});
  EXPECT_EQ(inset(known), 32);
  EXPECT_EQ(known.find({screen("eDP-1", 1000, 800)})->origin, CameraHousings::Origin::preview);
  known.setPreview(std::nullopt);
  write("housings.json", file(40));
  EXPECT_EQ(inset(known), 30);
  known.reread();
  EXPECT_EQ(inset(known), 40);
  EXPECT_EQ(changes, 3);
  const auto found = known.find({screen("HDMI-1", 1000, 800), screen("eDP-1", 1000, 800)});
  ASSERT_TRUE(found);
  EXPECT_EQ(found->screen, 1U);
  EXPECT_EQ(found->origin, CameraHousings::Origin::userFile);
  EXPECT_EQ(found->panel, "mine");
}

TEST_F(CameraHousingsTest, KnownPanelsAndTheKernelsNotch) {
  write("proc/device-tree/compatible",
        QByteArray("apple,j314s\0apple,t6000\0apple,arm-platform\0", 42));
  const auto whole = applied(housings(), {screen("eDP-1", 1512, 982, 2)})[0];
  EXPECT_EQ(whole.safeAreaInsetTop, 32);
  EXPECT_EQ(whole.auxiliaryTopRightArea->minX() - whole.auxiliaryTopLeftArea->maxX(), 185);
  EXPECT_EQ(applied(housings(), {screen("eDP-1", 1512, 945, 2)})[0].safeAreaInsetTop, 0)
      << "the kernel leaves the rows beside the housing dark";

  write("proc/device-tree/compatible", QByteArray("maker,unknown\0", 14));
  write("proc/device-tree/soc/dcp@38bc00000/apple,notch-height", QByteArray("\0\0\0\x4a", 4));
  EXPECT_EQ(applied(housings(), {screen("eDP-1", 1512, 982, 2)})[0].safeAreaInsetTop, 37);
  EXPECT_EQ(applied(housings(), {screen("eDP-1", 1512, 945, 2)})[0].safeAreaInsetTop, 0);
}

}  // namespace
}  // namespace valdrix::desktop
