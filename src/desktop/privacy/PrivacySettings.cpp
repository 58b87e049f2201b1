#include "desktop/privacy/PrivacySettings.h"

#include <algorithm>
#include <array>
#include <malloc.h>
#include <utility>

#include <QPixmapCache>
#include <QStringList>

#include "desktop/privacy/CalendarAccessTab.h"
#include "desktop/privacy/KeyAccessTab.h"
#include "platform/PrivacyLinks.h"

namespace valdrix::desktop {

namespace {

constexpr view::Size windowSize{520, 460};

/// The links in the order of the tabs that they lead to.
constexpr std::array<std::string_view, PrivacySettings::tabCount> links{
    platform::privacyLinks::calendars, platform::privacyLinks::accessibility};

}  // namespace

PrivacySettings::PrivacySettings(const Ports& ports) : ports_(ports) {}

PrivacySettings::~PrivacySettings() = default;

bool PrivacySettings::open(std::string_view url) {
  const auto* const link = std::ranges::find(links, url);
  if (link == links.end()) return false;
  open(static_cast<std::size_t>(link - links.begin()));
  return true;
}

view::SettingsScene PrivacySettings::scene() {
  return {.size = windowSize,
          .tabs = {{.label = "Calendriers",
                    .symbol = "calendar",
                    .make =
                        [this] {
                          return std::make_unique<CalendarAccessTab>(
                              ports_.eventStore, ports_.record, [this] { answers_.notify(); });
                        }},
                   {.label = "Touches",
                    .symbol = "speaker.wave.2.fill",
                    .make =
                        [this] {
                          const auto desktops =
                              qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':');
                          return std::make_unique<KeyAccessTab>(ports_.mediaKeys, ports_.custody,
                                                                indicatorOf(desktops));
                        }}},
          .hasSelectableTexts = true};
}

void PrivacySettings::open(std::optional<std::size_t> tab) {
  if (!window_) {
    window_ = std::make_unique<SettingsWindow>(
        scene(), SettingsWindow::Handlers{.closed = [this] { windowDidClose(); },
                                          .bringToFront = ports_.bringToFront});
    window_->selectTab(lastTab_);
  }
  if (tab) window_->selectTab(*tab);
  window_->open();
}

void PrivacySettings::windowDidClose() {
  // It is in the middle of an event of its own.
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        if (!window_ || window_->isVisible()) return;
        lastTab_ = window_->tab();
        window_.reset();
        QPixmapCache::clear();
        ::malloc_trim(0);
      },
      Qt::QueuedConnection);
}

}  // namespace valdrix::desktop
