#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace valdrix::desktop {

/// The mounts behind which a look at a file may wait for another machine or program, or for ever.
class SlowMounts {
 public:
  /// `mountinfo` is as in proc(5).
  explicit SlowMounts(std::string_view mountinfo);
  /// Those of this process now.
  [[nodiscard]] static SlowMounts current();

  /// Whether `path`, which is absolute, leads behind one of them, also through links. Does not look
  /// there.
  [[nodiscard]] bool areOnTheWayTo(const std::filesystem::path& path) const;

 private:
  [[nodiscard]] bool areOnTheWayTo(const std::filesystem::path& path, int remainingLinks) const;

  std::vector<std::filesystem::path> points_;
};

}  // namespace valdrix::desktop
