#include <gtest/gtest.h>

#include <QPainter>
#include <QRasterWindow>

#include "tests/support/WaitFor.h"
#include "tests/support/X11Main.h"

namespace valdrix::tests {
namespace {

class Square : public QRasterWindow {
 public:
  explicit Square(QColor color) : color_(color) {
    QSurfaceFormat format;
    format.setAlphaBufferSize(8);
    setFormat(format);
    setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    setGeometry(100, 100, 50, 50);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(QRect(0, 0, 50, 50), color_);
  }

 private:
  QColor color_;
};

// What the other suites rely on: pictures show what a user would see, compositor or not.
TEST(VirtualDisplay, PicturesShowWhatAUserSees) {
  Square below(Qt::red);
  below.show();
  Square above(QColor(0, 0, 0, 0));
  above.show();
  const auto pixel = [] { return display().screenshot().pixelColor(120, 120).name(); };
  EXPECT_TRUE(waitFor([&] { return pixel() == "#000000"; })) << pixel().toStdString();
  ASSERT_TRUE(display().startCompositor());
  EXPECT_TRUE(waitFor([&] { return pixel() == "#ff0000"; })) << pixel().toStdString();
  display().stopCompositor();
  EXPECT_TRUE(waitFor([&] { return pixel() == "#000000"; })) << pixel().toStdString();
}

TEST(VirtualDisplay, PointerAndKeysReachTheServer) {
  display().movePointer({77, 88});
  EXPECT_EQ(display().pointer(), QPoint(77, 88));
  EXPECT_TRUE(display().tapKey(0x1008FF13)) << "volume up";
  EXPECT_FALSE(display().tapKey(0x1008FFFF)) << "no such key";
}

TEST(VirtualDisplay, ManagersStart) {
  EXPECT_TRUE(display().startWindowManager());
  display().stopWindowManager();
}

}  // namespace
}  // namespace valdrix::tests
