#pragma once

#include <cstdint>
#include <optional>

#include <sys/types.h>

namespace valdrix::bench {

/// Reads what the kernel counts of another process, without disturbing it.
class ProcessProbe {
 public:
  explicit ProcessProbe(pid_t pid) : pid_(pid) {}

  /// How often its threads have slept so far, which is how often they were woken up.
  [[nodiscard]] std::uint64_t wakeUps() const;
  /// What all its threads have computed so far, in seconds.
  [[nodiscard]] double cpuSeconds() const;
  /// What of it is in memory, in kilobytes, pages that it shares with others included.
  [[nodiscard]] std::optional<double> residentKilobytes() const;
  /// The same with each shared page divided by the number of those who share it.
  [[nodiscard]] std::optional<double> proportionalKilobytes() const;
  /// What it holds of its own: no file backs it, so the system cannot take it back.
  [[nodiscard]] std::optional<double> anonymousKilobytes() const;

 private:
  pid_t pid_;
};

}  // namespace valdrix::bench
