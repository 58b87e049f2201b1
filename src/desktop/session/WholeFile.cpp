#include "desktop/session/WholeFile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <fcntl.h>

#include <sys/stat.h>
#include <system_error>

#include "desktop/session/UniqueFd.h"

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * 1000000000 + time.tv_nsec; }

/// The common start of the names of files being written; the writer's process ID follows.
std::string temporaryPrefix(const fs::path& file) {
  return "." + file.filename().string() + ".new-";
}

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = ::write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  }
  return true;
}

bool writeSynced(const fs::path& file, std::string_view bytes, mode_t mode) {
  const UniqueFd fd(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW,
                           S_IRUSR | S_IWUSR));
  return fd && ::fchmod(fd.get(), mode) == 0 && writeAll(fd.get(), bytes) && ::fsync(fd.get()) == 0;
}

// Without this a power cut may bring the old name back. Some file systems refuse; theirs is the
// promise then.
void syncFolder(const fs::path& folder) {
  const UniqueFd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (fd) ::fsync(fd.get());
}

mode_t modeOf(const fs::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : S_IRUSR | S_IWUSR;
}

// Renaming would replace a file that the user made read-only, which is not what they asked for.
bool mayReplace(const fs::path& file) {
  return ::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0 || errno == ENOENT;
}

bool isAbandoned(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) return false;
  pid_t pid = 0;
  const auto [end, error] =
      std::from_chars(name.data() + prefix.size(), name.data() + name.size(), pid);
  const bool isOurs = error == std::errc() && end == name.data() + name.size() && pid > 0;
  return isOurs && ::kill(pid, 0) != 0 && errno == ESRCH;
}

}  // namespace

FileStamp stampOf(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
          nanoseconds(status.st_ctim)};
}

FileContent readWholeFile(const fs::path& file, std::size_t maximumSize) {
  using enum FileContent::Status;
  const UniqueFd fd(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!fd) return {errno == ENOENT ? missing : unreadable, {}};
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {unreadable, {}};
  FileContent content{read, {}};
  // The size may be out of date by now, so it is only a first guess.
  std::size_t size = std::min(static_cast<std::size_t>(status.st_size), maximumSize) + 1;
  for (std::size_t filled = 0;;) {
    content.bytes.resize(size);
    const auto count = ::read(fd.get(), content.bytes.data() + filled, size - filled);
    if (count < 0 && errno != EINTR) return {unreadable, {}};
    if (count == 0) return content.bytes.resize(filled), content;
    filled += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    if (filled > maximumSize) return {tooLarge, {}};
    if (filled == size) size = std::min(size * 2, maximumSize + 1);
  }
}

fs::path followLinks(fs::path file) {
  constexpr int longestChain = 40;
  std::error_code error;
  for (int i = 0; i < longestChain && fs::is_symlink(file, error); ++i)
    file = file.parent_path() / fs::read_symlink(file, error);
  return file;
}

bool writeWholeFile(const fs::path& file, std::string_view bytes,
                    const std::optional<FileStamp>& known) {
  const auto target = followLinks(file);
  const auto folder = target.parent_path();
  const auto temporary = folder / (temporaryPrefix(target) + std::to_string(::getpid()));
  if (!mayReplace(target)) return false;
  if (writeSynced(temporary, bytes, modeOf(target)) && (!known || stampOf(target) == *known) &&
      std::rename(temporary.c_str(), target.c_str()) == 0) {
    syncFolder(folder);
    return true;
  }
  ::unlink(temporary.c_str());
  return false;
}

void removeAbandonedWrites(const fs::path& file) {
  const auto target = followLinks(file);
  std::error_code error;
  fs::directory_iterator entry(target.parent_path(), error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error))
    if (isAbandoned(entry->path().filename().string(), temporaryPrefix(target)))
      ::unlink(entry->path().c_str());
}

}  // namespace valdrix::desktop
