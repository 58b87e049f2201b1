#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

namespace valdrix::desktop {

/// Places that keep whoever looks at them waiting without end, as a share does whose server has
/// gone. Any thread.
class SilentPlaces {
 public:
  /// Whether `path`, which is absolute, is one of them or lies in one.
  [[nodiscard]] bool hold(const std::filesystem::path& path) const;
  void add(const std::filesystem::path& place);
  void remove(const std::filesystem::path& place);

 private:
  mutable std::mutex mutex_;
  std::set<std::filesystem::path> places_;
};

/// The looks that one thread takes at the disk, for others to see how long the present one takes,
/// and to end the work between two of them. `begin` and `end` are the thread's, the rest anybody's.
class DiskLooks {
 public:
  explicit DiskLooks(std::shared_ptr<SilentPlaces> silent) : silent_(std::move(silent)) {}

  /// Ends the present look and begins one at `path`, or at something in it; false when it must not
  /// be looked at, because it is silent.
  bool begin(const std::filesystem::path& path);
  void end();

  /// Whether the present look has taken longer than `patience`; its place is silent from then on,
  /// until the look ends after all.
  bool giveUp(std::chrono::milliseconds patience);
  /// Whether the present look was given up.
  [[nodiscard]] bool isGivenUp() const;

  void stop() { isStopped_ = true; }
  [[nodiscard]] bool isStopped() const { return isStopped_; }

 private:
  void finish();

  std::shared_ptr<SilentPlaces> silent_;
  std::atomic<bool> isStopped_ = false;
  mutable std::mutex mutex_;
  std::optional<std::filesystem::path> place_;  ///< of the present look
  std::chrono::steady_clock::time_point since_{};
  bool isGivenUp_ = false;
};

}  // namespace valdrix::desktop
