#include "desktop/audio/PulseFolderWatch.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <unistd.h>
#include <utility>

#include <sys/inotify.h>

namespace valdrix::desktop {

namespace {

std::string_view variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

std::optional<std::string> pulseRuntimeFolder() {
  constexpr std::string_view localServer = "unix:";
  if (const auto server = variable("PULSE_SERVER"); server.starts_with(localServer))
    return std::filesystem::path(server.substr(localServer.size())).parent_path().string();
  else if (!server.empty())
    return std::nullopt;
  if (const auto folder = variable("PULSE_RUNTIME_PATH"); !folder.empty())
    return std::string(folder);
  if (const auto folder = variable("XDG_RUNTIME_DIR"); !folder.empty())
    return std::string(folder) + "/pulse";
  return std::nullopt;
}

PulseFolderWatch::PulseFolderWatch(pa_mainloop_api* api, std::string folder,
                                   std::function<void()> onAppeared)
    : folder_(std::move(folder)),
      onAppeared_(std::move(onAppeared)),
      inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      readable_(nullptr, {api}) {
  if (inotify_ < 0) return;
  addWatches();
  readable_.reset(api->io_new(
      api, inotify_, PA_IO_EVENT_INPUT,
      [](pa_mainloop_api*, pa_io_event*, int, pa_io_event_flags_t, void* self) {
        static_cast<PulseFolderWatch*>(self)->handleEvents();
      },
      this));
}

PulseFolderWatch::~PulseFolderWatch() {
  readable_.reset();
  if (inotify_ >= 0) close(inotify_);
}

void PulseFolderWatch::addWatches() {
  constexpr std::uint32_t appearance = IN_CREATE | IN_MOVED_TO | IN_ONLYDIR;
  const auto parent = std::filesystem::path(folder_).parent_path();
  // The parent first: a folder made in between is then seen by one of the two.
  parentWatch_ = inotify_add_watch(inotify_, parent.c_str(), appearance);
  folderWatch_ = inotify_add_watch(inotify_, folder_.c_str(), appearance | IN_ATTRIB);
}

bool PulseFolderWatch::drain() {
  const auto name = std::filesystem::path(folder_).filename();
  bool hasAppeared = false;
  alignas(inotify_event) std::array<char, 4096> buffer{};
  ssize_t length = 0;
  while ((length = read(inotify_, buffer.data(), buffer.size())) > 0) {
    for (const char* at = buffer.data(); at < buffer.data() + length;) {
      const auto* event = reinterpret_cast<const inotify_event*>(at);
      at += sizeof(inotify_event) + event->len;
      hasAppeared |= event->wd != parentWatch_ || (event->len > 0 && name == event->name);
    }
  }
  return hasAppeared;
}

void PulseFolderWatch::handleEvents() {
  if (!drain()) return;
  // The folder may be another one than before.
  addWatches();
  onAppeared_();
}

}  // namespace valdrix::desktop
