#include <gtest/gtest.h>

#include <QGuiApplication>

// The main of test programs with panels under a Wayland compositor: they have a connection of their
// own, and Qt needs none.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
