#include "tests/support/X11Main.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <memory>

#include <QGuiApplication>

namespace valdrix::tests {

namespace {
std::unique_ptr<VirtualDisplay> theDisplay;
}

VirtualDisplay& display() { return *theDisplay; }

}  // namespace valdrix::tests

// The main of test programs that show windows: Qt connects to its display once, at the start.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  using valdrix::tests::theDisplay;
  theDisplay = std::make_unique<valdrix::tests::VirtualDisplay>();
  if (!theDisplay->isRunning()) {
    std::fputs("no X server: is Xvfb installed?\n", stderr);
    return 1;
  }
  qputenv("DISPLAY", theDisplay->name().c_str());
  qputenv("QT_QPA_PLATFORM", "xcb");
  int result = 0;
  {
    const QGuiApplication application(argc, argv);
    result = RUN_ALL_TESTS();
  }
  theDisplay.reset();
  return result;
}
