#pragma once

#include <memory>

#include <QString>

#include "tests/support/ChildProcess.h"

namespace valdrix::tests {

/// What this program takes for the system bus, which is never the machine's own: a bus that can die
/// and return, and on it, when wanted, a stand-in for the login manager.
class SystemBus {
 public:
  /// Starts the bus and waits until it accepts connections.
  void start();
  void stop() { daemon_.reset(); }
  /// Starts the login manager; `behaviour` is `write`, `deny` or `hang`, and `backlights` the class
  /// folder that it writes to.
  void startLogin1(const QString& behaviour, const QString& backlights);
  /// How often it was asked to set a brightness since it was started.
  [[nodiscard]] int login1Calls();

 private:
  std::unique_ptr<ChildProcess> daemon_;
  std::unique_ptr<ChildProcess> login1_;
  QByteArray login1Output_;
};

}  // namespace valdrix::tests
