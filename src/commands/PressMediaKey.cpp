#include "commands/PressMediaKey.h"

namespace valdrix::commands {

bool pressMediaKey(MediaKeyMonitor& monitor, const MediaKeyMonitor::KeyAction& press) {
  namespace sd = platform::systemDefined;
  const auto code = static_cast<std::uint32_t>(press.key);
  const platform::InputEvent event{
      .subtype = sd::auxiliaryControlButtons,
      .data1 =
          static_cast<std::int64_t>(code << 16 | sd::keyDown << 8 | (press.isRepeat ? 1U : 0U)),
      .modifierFlags = press.isFine ? platform::modifierFlag::shift : 0};
  return monitor.handleTapEvent(sd::eventType, &event) == platform::TapResult::swallow;
}

}  // namespace valdrix::commands
