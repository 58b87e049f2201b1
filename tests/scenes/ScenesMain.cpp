#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>

// Widgets without a display, in one style wherever the tests run.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // No tray of the machine's own gets the tests' item.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  const QApplication application(argc, argv);
  QApplication::setStyle("Fusion");
  QApplication::setQuitOnLastWindowClosed(false);
  QAccessible::setActive(true);
  return RUN_ALL_TESTS();
}
