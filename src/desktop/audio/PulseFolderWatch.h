#pragma once

#include <functional>
#include <optional>
#include <string>

#include "desktop/audio/PulseHandles.h"

namespace valdrix::desktop {

/// The folder in which a local sound server puts its socket; none when the user's settings name a
/// server elsewhere or there is no session.
[[nodiscard]] std::optional<std::string> pulseRuntimeFolder();

/// Tells when something appears in the sound server's folder, which may itself be still missing.
/// Belongs to the thread of the libpulse loop that it is made on.
class PulseFolderWatch {
 public:
  PulseFolderWatch(pa_mainloop_api* api, std::string folder, std::function<void()> onAppeared);
  ~PulseFolderWatch();
  PulseFolderWatch(const PulseFolderWatch&) = delete;
  PulseFolderWatch& operator=(const PulseFolderWatch&) = delete;

  /// Whether it can tell anything: the folder or its parent exists.
  [[nodiscard]] bool isWatching() const { return folderWatch_ >= 0 || parentWatch_ >= 0; }

 private:
  void addWatches();
  /// Takes what has happened; whether something appeared where the server's socket would.
  [[nodiscard]] bool drain();
  void handleEvents();

  std::string folder_;
  std::function<void()> onAppeared_;
  int inotify_;
  int folderWatch_ = -1;
  int parentWatch_ = -1;
  PulseEvent<pa_io_event> readable_;
};

}  // namespace valdrix::desktop
