#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/Instant.h"

namespace valdrix::desktop {

/// What is remembered of one file between two readings.
struct VdirFile {
  /// The content that it was read with: equal stamps mean unchanged content.
  struct Stamp {
    std::int64_t changed = -1;  ///< nanoseconds since 1970 of the last change of status; -1: unread
    std::uint64_t inode = 0;
    std::uint32_t size = 0;  ///< of very large ones, the largest number there is
    bool operator==(const Stamp&) const = default;
  };
  static constexpr platform::Instant never = platform::Instant::max();

  Stamp stamp{};
  bool isQueued = false;      ///< to be read
  bool isSeen = false;        ///< while looking for files that went
  bool isCollection = false;  ///< a calendar of its own
  /// Not later than the next start of any of its events; `never` when there is none.
  platform::Instant nextStart = never;
};

struct VdirNameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const {
    return std::hash<std::string_view>()(name);
  }
};
/// The event files of one folder by name.
using VdirFiles = std::unordered_map<std::string, VdirFile, VdirNameHash, std::equal_to<>>;

/// The stamp of a regular file, after following links; nothing for anything else.
[[nodiscard]] std::optional<VdirFile::Stamp> stampOfFile(int folder, const char* name);

enum class VdirReading {
  read,
  gone,        ///< there is no such file, or it is not a regular one
  unreadable,  ///< closed to us, or too large
};

/// Reads a regular file into `bytes`, with its stamp. Never waits for a pipe's other end. A file
/// that was changed just now gets a stamp that no file has, as it may change again within the same
/// tick of the file system's clock.
[[nodiscard]] VdirReading readFile(int folder, const char* name, std::size_t maximumSize,
                                   std::string& bytes, VdirFile::Stamp& stamp);

/// Whether a text is more than one event's file: an export or a subscription, which has a name or
/// several events; then the name, or an empty text.
[[nodiscard]] std::optional<std::string> collectionTitle(std::string_view text);

}  // namespace valdrix::desktop
