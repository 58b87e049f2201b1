#include "desktop/vdir/SlowMounts.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include <system_error>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

bool isSlow(std::string_view type) {
  constexpr std::array<std::string_view, 12> types{"9p",    "afs",      "autofs", "ceph",
                                                   "cifs",  "coda",     "fuse",   "lustre",
                                                   "ncpfs", "orangefs", "smb3",   "smbfs"};
  return type.starts_with("nfs") || type.starts_with("fuse.") ||
         std::ranges::find(types, type) != types.end();
}

/// Spaces and the like are written as a backslash and three octal digits.
std::string withoutOctals(std::string_view text) {
  std::string path;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i] == '\\' && i + 3 < text.size()) {
      path += static_cast<char>(((text[i + 1] - '0') << 6U) | ((text[i + 2] - '0') << 3U) |
                                (text[i + 3] - '0'));
      i += 3;
    } else {
      path += text[i];
    }
  return path;
}

bool isWithin(const fs::path& path, const fs::path& folder) {
  return std::ranges::mismatch(folder, path).in1 == folder.end();
}

}  // namespace

SlowMounts::SlowMounts(std::string_view mountinfo) {
  std::istringstream lines{std::string(mountinfo)};
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    const std::vector<std::string> words{std::istream_iterator<std::string>(fields), {}};
    constexpr std::size_t pointAt = 4;
    // The number of fields before the hyphen varies.
    const auto hyphen = std::ranges::find(words, "-");
    if (words.end() - hyphen < 2 || hyphen - words.begin() <= static_cast<int>(pointAt)) continue;
    const auto point = withoutOctals(words[pointAt]);
    // Where the root does not answer, no program runs.
    if (isSlow(*std::next(hyphen)) && point != "/") points_.emplace_back(point);
  }
}

SlowMounts SlowMounts::current() {
  std::ifstream file("/proc/self/mountinfo");
  return SlowMounts(std::string(std::istreambuf_iterator<char>(file), {}));
}

bool SlowMounts::areOnTheWayTo(const fs::path& path) const {
  constexpr int mostLinks = 40;
  return !points_.empty() && areOnTheWayTo(path.lexically_normal(), mostLinks);
}

bool SlowMounts::areOnTheWayTo(const fs::path& path, int remainingLinks) const {
  if (std::ranges::any_of(points_, [&](const auto& point) { return isWithin(path, point); }))
    return true;
  fs::path at = "/";
  for (auto part = std::next(path.begin()); part != path.end(); ++part) {
    std::error_code error;
    const auto target = fs::read_symlink(at / *part, error);
    if (error) {
      at /= *part;
      continue;
    }
    at /= target;
    while (++part != path.end()) at /= *part;
    return remainingLinks > 0 && areOnTheWayTo(at.lexically_normal(), remainingLinks - 1);
  }
  return false;
}

}  // namespace valdrix::desktop
