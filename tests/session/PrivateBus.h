#pragma once

#include <memory>

#include <QTemporaryDir>

#include "tests/support/ChildProcess.h"

namespace valdrix::tests {

/// A message bus of the test's own, at an address that stays the same when it is started again.
/// This process and its children find it as their session bus.
class PrivateBus {
 public:
  /// `services`: a folder of service files, for what the bus can start; none when empty.
  explicit PrivateBus(const QString& services = {});
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  /// Starts it; whether it accepts connections.
  [[nodiscard]] bool start();
  /// Starts it so that it takes nobody in.
  [[nodiscard]] bool startFull();
  /// Ends it at once, as a crash would.
  void kill();
  /// Makes it hang, or go on.
  void setHanging(bool hangs);

 private:
  [[nodiscard]] QString address() const;
  [[nodiscard]] bool start(int mostConnections);
  void configure(int mostConnections);

  QString services_;
  QTemporaryDir folder_;
  std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace valdrix::tests
