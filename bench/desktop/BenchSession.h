#pragma once

#include <memory>
#include <string>

#include <QTemporaryDir>

#include "tests/support/SoundServer.h"
#include "tests/support/SpawnedProgram.h"

namespace valdrix::bench {

/// What the programs of a user who has nothing yet find by the environment: folders, a session bus
/// and a sound server with one output at half volume, all private. Needs a QCoreApplication.
class BenchSession {
 public:
  BenchSession();
  BenchSession(const BenchSession&) = delete;
  BenchSession& operator=(const BenchSession&) = delete;

  /// Starts everything. Whether all of it runs; if not, `missing` names what does not.
  bool start();
  [[nodiscard]] const std::string& missing() const { return missing_; }
  [[nodiscard]] QString path(const char* name) const { return folder_.filePath(name); }

 private:
  bool startBus();

  QTemporaryDir folder_;
  tests::SoundServer sound_;
  std::unique_ptr<tests::SpawnedProgram> bus_;
  std::string missing_;
};

}  // namespace valdrix::bench
