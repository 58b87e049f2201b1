#include "desktop/vdir/VdirFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <string_view>

#include <sys/stat.h>

#include "desktop/session/UniqueFd.h"

namespace valdrix::desktop {
namespace {

// File systems count time in steps, some in seconds.
constexpr std::int64_t youngestTrusted = 1000000000;

VdirFile::Stamp stampOf(const struct stat& status) {
  constexpr std::int64_t largest = std::numeric_limits<std::uint32_t>::max();
  return {.changed = status.st_ctim.tv_sec * std::int64_t{1000000000} + status.st_ctim.tv_nsec,
          .inode = status.st_ino,
          .size = static_cast<std::uint32_t>(std::min<std::int64_t>(status.st_size, largest))};
}

std::int64_t now() {
  timespec time{};
  ::clock_gettime(CLOCK_REALTIME_COARSE, &time);
  return time.tv_sec * std::int64_t{1000000000} + time.tv_nsec;
}

/// Fills `bytes` up to one byte more than `maximumSize`. Whether there was no error.
bool readAll(int fd, std::size_t expectedSize, std::size_t maximumSize, std::string& bytes) {
  std::size_t filled = 0;
  bytes.resize(std::min(expectedSize, maximumSize) + 1);
  for (;;) {
    const auto count = ::read(fd, bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno != EINTR) return false;
    if (count == 0) break;
    filled += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    if (filled > maximumSize) break;
    if (filled == bytes.size()) bytes.resize(std::min(filled * 2, maximumSize + 1));
  }
  bytes.resize(filled);
  return true;
}

/// The value of the first line after `from` that begins with `name`; nothing when there is none.
/// `from` becomes the place after it.
std::optional<std::string_view> nextValue(std::string_view text, std::string_view name,
                                          std::size_t& from) {
  for (; (from = text.find(name, from)) != std::string_view::npos; from += name.size()) {
    if (from > 0 && text[from - 1] != '\n') continue;
    const auto line = text.substr(from, text.find_first_of("\r\n", from) - from);
    from += line.size();
    const auto colon = line.find(':');
    return colon == std::string_view::npos ? std::string_view() : line.substr(colon + 1);
  }
  return std::nullopt;
}

std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '\\' && i + 1 < value.size()) ++i;
    text += value[i];
  }
  return text;
}

bool hasSeveralIdentifiers(std::string_view text) {
  std::size_t from = 0;
  const auto first = nextValue(text, "UID:", from);
  while (const auto next = first ? nextValue(text, "UID:", from) : std::nullopt)
    if (*next != *first) return true;
  return false;
}

}  // namespace

std::optional<VdirFile::Stamp> stampOfFile(int folder, const char* name) {
  struct stat status {};
  if (::fstatat(folder, name, &status, 0) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return stampOf(status);
}

VdirReading readFile(int folder, const char* name, std::size_t maximumSize, std::string& bytes,
                     VdirFile::Stamp& stamp) {
  const UniqueFd fd(::openat(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!fd) {
    const auto closed = stampOfFile(folder, name);
    if (closed) stamp = *closed;
    return closed ? VdirReading::unreadable : VdirReading::gone;
  }
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode)) return VdirReading::gone;
  stamp = stampOf(status);
  if (stamp.changed + youngestTrusted > now()) stamp.changed = -1;
  const auto size = static_cast<std::size_t>(status.st_size);
  const bool isRead = size <= maximumSize && readAll(fd.get(), size, maximumSize, bytes);
  return isRead && bytes.size() <= maximumSize ? VdirReading::read : VdirReading::unreadable;
}

std::optional<std::string> collectionTitle(std::string_view text) {
  std::size_t from = 0;
  constexpr std::size_t longest = 4096;
  if (const auto name = nextValue(text, "X-WR-CALNAME", from))
    return name->size() <= longest ? unescaped(*name) : std::string();
  return hasSeveralIdentifiers(text) ? std::optional(std::string()) : std::nullopt;
}

}  // namespace valdrix::desktop
