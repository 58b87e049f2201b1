#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace valdrix::tests {

/// A program that a test starts before there is any event loop, and that ends with it, also when
/// the test crashes or is killed. Its error output is dropped.
class SpawnedProgram {
 public:
  /// Starts `arguments[0]` with `variables` ("NAME=value") added to the environment. Its standard
  /// output can be read with `readLine` when `capturesOutput`, and is dropped otherwise.
  SpawnedProgram(std::vector<std::string> arguments, std::vector<std::string> variables,
                 bool capturesOutput = false);
  ~SpawnedProgram();
  SpawnedProgram(const SpawnedProgram&) = delete;
  SpawnedProgram& operator=(const SpawnedProgram&) = delete;

  [[nodiscard]] pid_t pid() const { return pid_; }
  [[nodiscard]] bool isRunning();
  /// Waits for its end, ten seconds at most; its exit code, or -1 when it was ended by a signal,
  /// takes longer or has been waited for before.
  int wait();
  /// The next line of its output without the line's end; none when it ends first or takes longer
  /// than ten seconds.
  [[nodiscard]] std::optional<std::string> readLine();

 private:
  [[nodiscard]] bool endsWithin(int milliseconds) const;

  pid_t pid_ = -1;
  int output_ = -1;
};

}  // namespace valdrix::tests
