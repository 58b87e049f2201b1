#include "tests/support/WaitFor.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

namespace valdrix::tests {

bool waitFor(const std::function<bool()>& condition, int milliseconds) {
  QElapsedTimer clock;
  clock.start();
  QTimer wake;
  wake.start(5);
  while (!condition()) {
    if (clock.elapsed() > milliseconds) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace valdrix::tests
