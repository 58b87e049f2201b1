// Plasma's media keys, as its service of global shortcuts hands them out.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "desktop/session/QtRunLoop.h"
#include "desktop/shortcuts/KGlobalAccelKeys.h"
#include "desktop/shortcuts/KGlobalAccelSettings.h"
#include "platform/EventTaps.h"
#include "tests/session/PrivateBus.h"
#include "tests/shortcuts/FakeKGlobalAccel.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using platform::MediaKey;
using testing::ElementsAre;

constexpr int volumeUpKey = 0x01000072;
constexpr int muteKey = 0x01000071;
constexpr int shift = 0x02000000;
constexpr auto pressed = "globalShortcutPressed";
constexpr auto repeated = "globalShortcutRepeated";
constexpr auto released = "globalShortcutReleased";
constexpr auto up = "kmix/increase_volume";

class KGlobalAccelTest : public testing::Test {
 protected:
  KGlobalAccelTest() {
    EXPECT_TRUE(bus_.start());
    service_ = std::make_unique<tests::FakeKGlobalAccel>();
    service_->add("kmix", "increase_volume", {{volumeUpKey, 0, 0, 0}});
    service_->add("kmix", "mute", {{muteKey, 0, 0, 0}, {0x04000041, 0x42, 0, 0}});
    service_->setRunning(true);
    session_ = std::make_unique<SessionBus>(runLoop_);
    EXPECT_TRUE(session_->waitUntilConnected(10));
    store_ = std::make_unique<KGlobalAccelSettings>(*session_);
  }
  void makeKeys() {
    keys_ = std::make_unique<KGlobalAccelKeys>(
        *session_, [this](MediaKey key) { return entrusted_.contains(key); },
        KeySource::Events{.pressed = [this](const MediaKeyEvent& event) { note(event); },
                          .changed = [this] { ++changes_; }});
  }
  /// "shift+volume-up down repeat"
  void note(const MediaKeyEvent& event) {
    std::string text = event.modifierFlags & platform::modifierFlag::shift ? "shift+" : "";
    for (const auto& [key, word] : platform::mediaKeys)
      if (key == event.key) text += word;
    saw_.push_back(text + (event.isDown ? " down" : " up") + (event.isRepeat ? " repeat" : ""));
  }
  [[nodiscard]] bool stands(KeyState state, MediaKey key = MediaKey::volumeUp) {
    return tests::waitFor([&] { return keys_->state(key) == state; });
  }
  /// What a key's signal becomes.
  std::vector<std::string> signal(const char* name, int key) {
    saw_.clear();
    if (!service_->signal(name, key)) return {"nothing is sent"};
    EXPECT_TRUE(tests::waitFor([&] { return !saw_.empty(); })) << name;
    return saw_;
  }
  bool write(const SettingStore::Value& value, const std::string& setting = up) {
    std::optional<bool> isWritten;
    store_->write(setting, value, [&](bool answer) { isWritten = answer; });
    EXPECT_FALSE(isWritten) << "before the call returned";
    EXPECT_TRUE(tests::waitFor([&] { return isWritten.has_value(); }));
    return isWritten.value_or(false);
  }
  /// "?" when it cannot be read.
  std::string read(const std::string& setting) {
    std::optional<std::string> text;
    store_->read(setting, [&](std::optional<SettingStore::Value> value) {
      text = value ? value->value_or("default") : "?";
    });
    EXPECT_FALSE(text) << "before the call returned";
    EXPECT_TRUE(tests::waitFor([&] { return text.has_value(); }));
    return text.value_or("no answer");
  }

  QtRunLoop runLoop_;
  tests::PrivateBus bus_;
  std::unique_ptr<tests::FakeKGlobalAccel> service_;
  std::unique_ptr<SessionBus> session_;
  std::unique_ptr<KGlobalAccelSettings> store_;
  std::set<MediaKey> entrusted_{MediaKey::volumeUp};
  std::unique_ptr<KGlobalAccelKeys> keys_;
  std::vector<std::string> saw_;
  int changes_ = 0;
};

TEST_F(KGlobalAccelTest, AKeyThatTheDesktopLeavesArrivesUntilItIsGivenUp) {
  makeKeys();
  keys_->hold({MediaKey::volumeUp});
  EXPECT_TRUE(tests::waitFor([&] { return keys_->offers(MediaKey::volumeUp); }));
  EXPECT_FALSE(keys_->offers(MediaKey::mute)) << "not entrusted";
  EXPECT_TRUE(
      tests::waitFor([&] { return !service_->keysOf("valdrix", "volume-up-fine").isEmpty(); }));
  EXPECT_THAT(signal(pressed, volumeUpKey | shift), ElementsAre("shift+volume-up down"));
  EXPECT_EQ(keys_->state(MediaKey::volumeUp), KeyState::taken);
  const int before = changes_;
  EXPECT_TRUE(write("@as []"));
  EXPECT_TRUE(stands(KeyState::held));
  EXPECT_EQ(changes_, before + 1);

  EXPECT_THAT(signal(pressed, volumeUpKey), ElementsAre("volume-up down"));
  EXPECT_THAT(signal(pressed, volumeUpKey), ElementsAre("volume-up down repeat"));
  EXPECT_THAT(signal(repeated, volumeUpKey), ElementsAre("volume-up down repeat"));
  EXPECT_THAT(signal(released, volumeUpKey), ElementsAre("volume-up up"));
  EXPECT_THAT(signal(pressed, volumeUpKey), ElementsAre("volume-up down"));

  EXPECT_TRUE(write("['16777330']")) << "although it is still held";
  EXPECT_TRUE(stands(KeyState::taken));
  keys_->hold({});
  EXPECT_TRUE(tests::waitFor([&] { return service_->actionsOf("valdrix").isEmpty(); }));
  EXPECT_EQ(service_->keysOf("kmix", "increase_volume").size(), 1);
}

TEST_F(KGlobalAccelTest, TheServiceComesAndGoes) {
  // An earlier process was killed.
  service_->add("valdrix", "mute", {{muteKey | shift, 0, 0, 0}});
  service_->setRunning(false);
  EXPECT_EQ(read(up), "?");
  EXPECT_FALSE(write("@as []"));
  makeKeys();
  keys_->hold({MediaKey::volumeUp});
  for (int round = 0; round < 2; ++round) {
    SCOPED_TRACE(round);
    service_->setRunning(true);
    EXPECT_TRUE(write("@as []"));
    EXPECT_TRUE(stands(KeyState::held));
    EXPECT_THAT(signal(pressed, volumeUpKey), ElementsAre("volume-up down"));
    EXPECT_THAT(service_->actionsOf("valdrix"), ElementsAre("volume-up", "volume-up-fine"));
    round == 0 ? service_->setRunning(false) : bus_.kill();
    EXPECT_TRUE(tests::waitFor([&] { return !keys_->offers(MediaKey::volumeUp); }));
    EXPECT_EQ(keys_->state(MediaKey::volumeUp), KeyState::taken);
  }
  EXPECT_EQ(read(up), "?");
}

TEST_F(KGlobalAccelTest, ValuesSurviveAndWhatIsRefusedIsNotWritten) {
  EXPECT_EQ(read("kmix/unknown"), "?");
  EXPECT_EQ(read("unknown"), "?");
  EXPECT_EQ(read("kmix/mute"), "['16777329', '67108929 66']");
  EXPECT_TRUE(write("@as []", "kmix/mute"));
  EXPECT_EQ(read("kmix/mute"), "@as []");
  EXPECT_TRUE(write("['67108929 66']", "kmix/mute"));
  EXPECT_TRUE(write(std::nullopt, "kmix/mute"));
  EXPECT_EQ(read("kmix/mute"), "['16777329', '67108929 66']");
  for (const char* value : {"['16777330']", "", "[]", "['']", "['1',]", "['-1']", "['1 2 3 4 5']"})
    EXPECT_FALSE(write(value, "kmix/mute")) << value;
  EXPECT_FALSE(write("['16777330', '67108929']", "kmix/mute"));
  EXPECT_EQ(read("kmix/mute"), "['67108929']") << "the other was refused";
  EXPECT_FALSE(write("@as []", "kmix/unknown"));
}

}  // namespace
}  // namespace valdrix::desktop
