#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include <QObject>

#include "desktop/keys/KeyCustody.h"
#include "desktop/keys/MediaKeyTaps.h"
#include "desktop/scenes/SettingsWindow.h"
#include "desktop/session/PrivacyRecord.h"
#include "observation/Listeners.h"
#include "observation/Token.h"
#include "platform/EventStore.h"
#include "view/SettingsScene.h"

namespace valdrix::desktop {

/// What the program may do, as a window in which the user says so: the calendars and the keys, a
/// tab for each. The window exists while it is open. Needs a QApplication; main thread only.
class PrivacySettings {
 public:
  /// All outlive it.
  struct Ports {
    platform::EventStore& eventStore;
    PrivacyRecord& record;
    MediaKeyTaps& mediaKeys;
    /// Null where the desktop's settings cannot hand keys over.
    KeyCustody* custody = nullptr;
    BringToFront bringToFront{};
  };

  explicit PrivacySettings(const Ports& ports);
  ~PrivacySettings();
  PrivacySettings(const PrivacySettings&) = delete;
  PrivacySettings& operator=(const PrivacySettings&) = delete;

  static constexpr std::size_t tabCount = 2;
  /// Opens a tab, counted from 0, or the one that was seen last.
  void open(std::optional<std::size_t> tab);
  /// Opens the tab that a link to the system's privacy settings leads to. False for other links.
  bool open(std::string_view url);
  /// Calls `block` after the user has given or withdrawn an access here.
  [[nodiscard]] Token observeAnswers(std::function<void()> block) {
    return answers_.add(std::move(block));
  }

  /// The window's tabs, in the order of the links.
  [[nodiscard]] view::SettingsScene scene();
  /// The window, while it is open; else null.
  [[nodiscard]] SettingsWindow* window() { return window_.get(); }

 private:
  void windowDidClose();

  Ports ports_;
  Listeners<> answers_;
  std::unique_ptr<SettingsWindow> window_;
  std::size_t lastTab_ = 0;
  QObject context_;
};

}  // namespace valdrix::desktop
