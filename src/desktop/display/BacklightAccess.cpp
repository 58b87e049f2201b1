#include "desktop/display/BacklightAccess.h"

#include <chrono>
#include <utility>

namespace valdrix::desktop {

namespace {

using namespace std::chrono_literals;
constexpr auto recheckInterval = 30s;

}  // namespace

BacklightAccess::BacklightAccess(BacklightWriter& writer,
                                 std::function<std::optional<Backlight>()> find)
    : writer_(writer), find_(std::move(find)) {
  recheck_.setInterval(recheckInterval);
  QObject::connect(&recheck_, &QTimer::timeout, &context_, [this] { check(); });
}

void BacklightAccess::wrote(bool isWritten) {
  if (isWritten)
    recheck_.stop();
  else if (!recheck_.isActive())
    recheck_.start();
  if (std::exchange(isGranted_, isWritten) != isWritten) observers_.notify();
}

void BacklightAccess::check() {
  const auto backlight = find_();
  if (!backlight) return;
  if (const auto present = readSysfsNumber(backlight->folder / "brightness"))
    writer_.tryWrite(*backlight, *present, context_, [this](bool isWritten) { wrote(isWritten); });
}

}  // namespace valdrix::desktop
