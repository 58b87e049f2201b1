#include "desktop/vdir/FolderWatches.h"

#include <array>
#include <cerrno>

namespace valdrix::desktop {
namespace {

constexpr std::uint32_t events = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                 IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF |
                                 IN_ONLYDIR;
constexpr int buffersAtOnce = 4;

}  // namespace

FolderWatches::FolderWatches()
    : inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), isIncomplete_(!inotify_) {}

void FolderWatches::beginRound() {
  ++round_;
  isIncomplete_ = !inotify_;
}

void FolderWatches::finishRound() {
  for (auto watch = watches_.begin(); watch != watches_.end();)
    if (watch->second.round == round_) {
      ++watch;
    } else {
      ::inotify_rm_watch(inotify_.get(), watch->first);
      watch = watches_.erase(watch);
    }
}

int FolderWatches::add(const std::filesystem::path& folder, const std::string& name) {
  const int id = ::inotify_add_watch(inotify_.get(), folder.c_str(), events);
  // A folder that is gone or closed to us is no lack of watches.
  if (id < 0) isIncomplete_ |= errno == ENOSPC || errno == ENOMEM;
  if (id < 0) return -1;
  auto& watch = watches_[id];
  if (watch.round != round_) watch = {{}, false, round_};
  if (name.empty()) watch.isForAll = true;
  if (!name.empty()) watch.names.insert(name);
  return id;
}

FolderWatches::Event FolderWatches::describe(const inotify_event& event) const {
  const std::string_view name = event.len > 0 ? event.name : "";
  const auto found = watches_.find(event.wd);
  if (found == watches_.end()) return {-1, event.mask, name, false, false};
  const auto& watch = found->second;
  return {event.wd, event.mask, name, watch.names.contains(name), watch.isForAll};
}

void FolderWatches::read(const std::function<void(const Event&)>& use) {
  alignas(inotify_event) std::array<char, 65536> buffer{};
  for (int count = 0; count < buffersAtOnce; ++count) {
    const auto size = ::read(inotify_.get(), buffer.data(), buffer.size());
    if (size <= 0 && errno != EINTR) return;
    for (const char* at = buffer.data(); at < buffer.data() + size;) {
      const auto* const event = reinterpret_cast<const inotify_event*>(at);
      at += sizeof(inotify_event) + event->len;
      use(describe(*event));
    }
  }
}

}  // namespace valdrix::desktop
