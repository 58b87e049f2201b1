// Which events the tap takes and what it makes of them. The monitor's life is in the scenarios.

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "media/MediaKeyMonitor.h"
#include "sim/ManualRunLoop.h"
#include "sim/SimAccessibility.h"
#include "sim/SimEventTaps.h"
#include "sim/SimUserDefaults.h"

namespace valdrix {
namespace {

using platform::InputEvent;
using platform::TapResult;
namespace flag = platform::modifierFlag;

struct RecordingDelegate : MediaKeyMonitorDelegate {
  [[nodiscard]] bool canHandleBrightnessKeys() const override { return true; }
  void mediaKeyVolumeUp(float step) override { add("volume +", step); }
  void mediaKeyVolumeDown(float step) override { add("volume -", step); }
  void mediaKeyMute() override { actions.emplace_back("mute"); }
  void mediaKeyBrightnessUp(float step) override { add("brightness +", step); }
  void mediaKeyBrightnessDown(float step) override { add("brightness -", step); }

  void add(const std::string& what, float step) {
    actions.push_back(what + sim::formatNumber(static_cast<double>(step)));
  }
  std::vector<std::string> actions;
};

class MediaKeys : public testing::Test {
 protected:
  MediaKeys() {
    defaults.setFromOutside("volumeHUDEnabled", "true");
    defaults.setFromOutside("brightnessHUDEnabled", "true");
    monitor.setDelegate(delegate);
  }
  TapResult handle(std::int64_t data1, std::uint32_t flags = 0, std::int16_t subtype = 8,
                   std::uint32_t type = 14) {
    const InputEvent event{subtype, data1, flags};
    const auto result = monitor.handleTapEvent(type, &event);
    EXPECT_TRUE(delegate->actions.empty()) << "nothing is done inside the tap";
    runLoop.runPending();
    return result;
  }

  sim::Trace trace;
  sim::ManualRunLoop runLoop{trace};
  sim::SimAccessibility accessibility{trace};
  sim::SimEventTaps taps{trace, accessibility};
  sim::SimUserDefaults defaults{trace};
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  MediaKeyMonitor monitor{runLoop, accessibility, taps, defaults};
};

TEST_F(MediaKeys, EventsAreDecodedFromTheirData) {
  const struct {
    const char* what;
    std::int64_t data1;
    std::uint32_t flags;
    bool isSwallowed;
    const char* action;
  } rows[]{
      {"volume up", 0x00000A00, 0, true, "volume +0.0625"},
      {"volume down", 0x00010A00, 0, true, "volume -0.0625"},
      {"brightness up", 0x00020A00, 0, true, "brightness +0.0625"},
      {"brightness down", 0x00030A00, 0, true, "brightness -0.0625"},
      {"mute", 0x00070A00, 0, true, "mute"},
      {"fine", 0x00030A00, flag::shift, true, "brightness -0.015625"},
      {"a repeat", 0x00010A01, 0, true, "volume -0.0625"},
      {"a repeat without the down state", 0x00010001, 0, true, "volume -0.0625"},
      {"a repeat of mute", 0x00070A01, 0, true, ""},
      {"up", 0x00000B00, 0, true, ""},
      {"only the low half counts", 0x1234567800010A00, 0, true, "volume -0.0625"},
      {"bits between repeat and state", 0x00000AF0, 0, true, "volume +0.0625"},
      {"another key", 0x00040A00, 0, false, ""},
      {"a code beyond the keys", 0xFFFF0A00, 0, false, ""},
      {"control", 0x00000A00, flag::control, false, ""},
      {"option and shift", 0x00000A00, flag::option | flag::shift, false, ""},
      {"command, going up", 0x00000B00, flag::command, false, ""},
      {"caps lock", 0x00000A00, 0x10000, true, "volume +0.0625"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(handle(row.data1, row.flags) == TapResult::swallow, row.isSwallowed) << row.what;
    const std::vector<std::string> expected =
        *row.action ? std::vector<std::string>{row.action} : std::vector<std::string>{};
    EXPECT_EQ(std::exchange(delegate->actions, {}), expected) << row.what;
  }
}

TEST_F(MediaKeys, OtherEventsPass) {
  EXPECT_EQ(handle(0x00000A00, 0, 7), TapResult::pass);
  EXPECT_EQ(handle(0x00000A00, 0, 8, 10), TapResult::pass);
  EXPECT_EQ(monitor.handleTapEvent(14, nullptr), TapResult::pass);
  // Also without a tap to switch on again.
  EXPECT_EQ(monitor.handleTapEvent(platform::tapDisabledByTimeout, nullptr), TapResult::pass);
  EXPECT_TRUE(delegate->actions.empty());
}

}  // namespace
}  // namespace valdrix
