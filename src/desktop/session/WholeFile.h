#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace valdrix::desktop {

/// What a file's content was when it was looked at; equal stamps mean, up to the clock tick of the
/// file system, unchanged content.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = -1;  ///< -1: no file
  std::int64_t modified = 0;
  std::int64_t changed = 0;
  bool operator==(const FileStamp&) const = default;
};

[[nodiscard]] FileStamp stampOf(const std::filesystem::path& file);

struct FileContent {
  enum class Status {
    read,
    missing,
    unreadable,  ///< no permission, or no regular file
    tooLarge,
  };
  Status status;
  std::string bytes;
};

/// Reads a regular file of `maximumSize` bytes at most. Never waits for a pipe's other end.
[[nodiscard]] FileContent readWholeFile(const std::filesystem::path& file, std::size_t maximumSize);

/// Where `file` leads when it is a symbolic link, or a chain of them, also a dangling one; else
/// `file` itself.
[[nodiscard]] std::filesystem::path followLinks(std::filesystem::path file);

/// Replaces the content of `file`, so that at any moment, also after a kill or a power cut, either
/// the old or the new content is there, whole. A symbolic link stays one and its target is
/// replaced. Keeps the file's permissions; a new file is the user's alone. Where `known` is given,
/// a file that is no longer what it says stays, however long the disk took. Whether it is on disk.
[[nodiscard]] bool writeWholeFile(const std::filesystem::path& file, std::string_view bytes,
                                  const std::optional<FileStamp>& known = {});

/// Removes what `writeWholeFile` left beside `file` in processes that were killed meanwhile.
void removeAbandonedWrites(const std::filesystem::path& file);

}  // namespace valdrix::desktop
