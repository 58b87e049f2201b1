#pragma once

#include <stdexcept>
#include <string>

namespace valdrix::sim {

/// What is wrong with a scenario, in words for whoever wrote it, and in which of its lines. Thrown
/// while a scenario is read or played, and caught by who asked for that.
class ScenarioError : public std::runtime_error {
 public:
  ScenarioError(int line, const std::string& reason) : std::runtime_error(reason), line_(line) {}

  /// Counted from 1; 0 while it is not known.
  [[nodiscard]] int line() const { return line_; }

 private:
  int line_;
};

/// Gives up a line that is not known yet by its number.
[[noreturn]] inline void fail(const std::string& reason) { throw ScenarioError(0, reason); }

}  // namespace valdrix::sim
