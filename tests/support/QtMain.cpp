#include <gtest/gtest.h>

#include <QCoreApplication>

// The main of every test program that needs an event loop but no display.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
