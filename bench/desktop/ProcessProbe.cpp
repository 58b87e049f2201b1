#include "bench/desktop/ProcessProbe.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

namespace valdrix::bench {

namespace {

/// The number after `name` in a file of lines such as "VmRSS:   1234 kB".
std::optional<std::uint64_t> field(const std::filesystem::path& file, const std::string& name) {
  std::ifstream stream(file);
  for (std::string word; stream >> word;) {
    std::uint64_t value = 0;
    if (word == name + ':' && stream >> value) return value;
  }
  return std::nullopt;
}

}  // namespace

std::uint64_t ProcessProbe::wakeUps() const {
  std::uint64_t count = 0;
  std::error_code error;
  const auto tasks = "/proc/" + std::to_string(pid_) + "/task";
  for (const auto& task : std::filesystem::directory_iterator(tasks, error))
    count += field(task.path() / "status", "voluntary_ctxt_switches").value_or(0);
  return count;
}

double ProcessProbe::cpuSeconds() const {
  clockid_t clock{};
  timespec time{};
  if (clock_getcpuclockid(pid_, &clock) != 0 || clock_gettime(clock, &time) != 0) return 0;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

std::optional<double> ProcessProbe::residentKilobytes() const {
  return field("/proc/" + std::to_string(pid_) + "/status", "VmRSS");
}

std::optional<double> ProcessProbe::proportionalKilobytes() const {
  return field("/proc/" + std::to_string(pid_) + "/smaps_rollup", "Pss");
}

std::optional<double> ProcessProbe::anonymousKilobytes() const {
  return field("/proc/" + std::to_string(pid_) + "/smaps_rollup", "Anonymous");
}

}  // namespace valdrix::bench
