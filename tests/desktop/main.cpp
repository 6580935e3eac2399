// Test main of the desktop tests: one QApplication on the offscreen platform.
// gtest_discover_tests runs the binary without the test's environment, so the
// platform is chosen here when the caller did not choose one.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

int main(int argc, char** argv) {
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
