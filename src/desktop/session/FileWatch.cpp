#include "desktop/session/FileWatch.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <sys/inotify.h>
#include <system_error>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

constexpr std::uint32_t folderEvents = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                       IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF |
                                       IN_ONLYDIR;

}  // namespace

FileWatch::FileWatch(fs::path file, std::function<void()> onChange)
    : file_(std::move(file)),
      onChange_(std::move(onChange)),
      inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      notifier_(QSocketNotifier::Read) {
  if (!inotify_) return;
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { readEvents(); });
  notifier_.setSocket(inotify_.get());
  notifier_.setEnabled(true);
  arm();
}

void FileWatch::arm() {
  for (auto folder = names_.begin(); folder != names_.end();
       folder = names_.upper_bound(folder->first))
    ::inotify_rm_watch(inotify_.get(), folder->first);
  names_.clear();
  watch(file_, 0);
}

void FileWatch::watch(const fs::path& file, int depth) {
  constexpr int deepest = 100;
  const auto folder = file.parent_path();
  if (depth > deepest || folder == file) return;
  const int id = ::inotify_add_watch(inotify_.get(), folder.c_str(), folderEvents);
  if (id < 0) return watch(folder, depth + 1);
  names_.emplace(id, file.filename().string());
  std::error_code error;
  if (fs::is_symlink(file, error)) watch(folder / fs::read_symlink(file, error), depth + 1);
}

void FileWatch::readEvents() {
  alignas(inotify_event) std::array<char, 16384> buffer{};
  bool isOfInterest = false;
  for (ssize_t size = 0;
       (size = ::read(inotify_.get(), buffer.data(), buffer.size())) > 0 || errno == EINTR;) {
    for (const char* at = buffer.data(); at < buffer.data() + size;) {
      const auto* const event = reinterpret_cast<const inotify_event*>(at);
      at += sizeof(inotify_event) + event->len;
      const auto [first, last] = names_.equal_range(event->wd);
      const std::string_view name = event->len > 0 ? event->name : "";
      const bool isName =
          std::any_of(first, last, [&](const auto& entry) { return entry.second == name; });
      // Without a name it is the folder itself that went.
      isOfInterest |= isName || (first != last && name.empty()) || (event->mask & IN_Q_OVERFLOW);
    }
  }
  if (!isOfInterest) return;
  arm();
  onChange_();
}

}  // namespace valdrix::desktop
