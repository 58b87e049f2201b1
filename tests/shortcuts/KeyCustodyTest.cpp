// What becomes of a desktop's settings, wherever the process ends and whoever else changes them.

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QTemporaryDir>

#include "desktop/shortcuts/DesktopKeyCustody.h"
#include "sim/ManualRunLoop.h"
#include "sim/Trace.h"

namespace valdrix::desktop {
namespace {

namespace fs = std::filesystem;
using platform::MediaKey;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using Place = KeyCustody::Place;
using Values = std::map<std::string, std::string>;

const std::string schema = "org.gnome.settings-daemon.plugins.media-keys";
const std::string customs = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/";
const std::string list = schema + " custom-keybindings";
const std::set<MediaKey> volume{MediaKey::volumeUp, MediaKey::volumeDown, MediaKey::mute};
const std::set<MediaKey> brightness{MediaKey::brightnessUp, MediaKey::brightnessDown};

std::string custom(const char* name, const char* key) {
  return schema + ".custom-keybinding:" + customs + name + "/ " + key;
}

/// The settings of a GNOME desktop, as its tool tells them: what nobody has set has its default.
struct Desktop {
  Values defaults{
      {list, "@as []"},
      {schema + " volume-up", "['']"},
      {schema + " volume-down", "['']"},
      {schema + " volume-mute", "['']"},
      {schema + " screen-brightness-up", "['']"},
      {schema + " screen-brightness-down", "['']"},
      {schema + " volume-up-static", "['XF86AudioRaiseVolume', '<Ctrl>XF86AudioRaiseVolume']"},
      {schema + " volume-down-static", "['XF86AudioLowerVolume']"},
      {schema + " volume-mute-static", "['XF86AudioMute']"},
      {schema + " screen-brightness-up-static", "['XF86MonBrightnessUp']"},
      {schema + " screen-brightness-down-static", "['XF86MonBrightnessDown']"}};
  Values set;
  std::vector<std::string> written;
  bool isAnswering = true;

  std::optional<std::string> value(const std::string& name) const {
    if (!isAnswering) return std::nullopt;
    if (const auto one = set.find(name); one != set.end()) return one->second;
    if (const auto one = defaults.find(name); one != defaults.end()) return one->second;
    return name.find(':') == std::string::npos ? std::nullopt : std::optional<std::string>("''");
  }
  void write(const std::string& name, const SettingStore::Value& text) {
    written.push_back(name);
    set.erase(name);
    if (text && value(name) != text) set[name] = *text;
  }
};

class FakeStore final : public SettingStore {
 public:
  FakeStore(Desktop& desktop, platform::RunLoop& runLoop) : desktop_(desktop), runLoop_(runLoop) {}
  std::string name() const override { return "gsettings"; }
  void read(const std::string& setting, OnRead done) override {
    runLoop_.async(lifetime_.weak([this, setting, done] {
      const auto value = desktop_.value(setting);
      done(value ? std::optional(Value(*value)) : std::nullopt);
    }));
  }
  void write(const std::string& setting, const Value& value, OnWritten done) override {
    runLoop_.async(lifetime_.weak([this, setting, value, done] {
      desktop_.write(setting, value);
      done(true);
    }));
  }

 private:
  Desktop& desktop_;
  platform::RunLoop& runLoop_;
  Lifetime lifetime_;
};

/// A run loop that comes to a halt in the midst of its work.
class HaltingRunLoop final : public sim::ManualRunLoop {
 public:
  using ManualRunLoop::ManualRunLoop;
  void async(std::function<void()> block) override {
    ManualRunLoop::async([this, block = std::move(block)] {
      if (turnsLeft > 0) --turnsLeft, block();
    });
  }
  int turnsLeft = 1000000;
};

class KeyCustodyTest : public testing::Test {
 protected:
  /// The program that runs now; it ends with the next one.
  DesktopKeyCustody& start(const char* id = "GNOME") {
    custody_.reset();
    loop_.reset();
    loop_ = std::make_unique<HaltingRunLoop>(trace_);
    DesktopKeyCustody::Stores stores;
    stores.push_back(std::make_unique<FakeStore>(desktop, *loop_));
    custody_ = std::make_unique<DesktopKeyCustody>(*loop_, std::move(stores),
                                                   knownDesktop(std::string(id)), "/bin/it's me",
                                                   CustodyRecord(record));
    custody_->setWanted(all());
    return *custody_;
  }
  void run() { loop_->runPending(); }
  HaltingRunLoop& loop() { return *loop_; }
  static std::set<MediaKey> all() {
    auto keys = volume;
    keys.insert(brightness.begin(), brightness.end());
    return keys;
  }
  std::string text(const std::string& name) const { return desktop.value(name).value_or("-"); }

  QTemporaryDir folder_;
  const fs::path record = fs::path(folder_.path().toStdString()) / "none yet" / "desktop-keys.json";
  Desktop desktop;

 private:
  sim::Trace trace_;
  std::unique_ptr<HaltingRunLoop> loop_;
  std::unique_ptr<DesktopKeyCustody> custody_;
};

TEST_F(KeyCustodyTest, HandsKeysOverAndGivesThemBack) {
  desktop.set[list] = "['/mine/']";
  desktop.set[schema + " volume-up"] = "['<Super>F12', '<shift>xf86audioraisevolume']";
  const auto before = desktop.set;
  auto& custody = start();
  run();
  EXPECT_THAT(desktop.written, IsEmpty()) << "nobody has asked";
  custody.entrust();
  EXPECT_TRUE(custody.state().isBusy);
  run();
  EXPECT_FALSE(custody.state().isBusy || custody.state().hasFailed) << custody.state().note;
  EXPECT_THAT(custody.state().places, Contains(Pair(MediaKey::mute, Place::entrusted)));
  EXPECT_EQ(text(schema + " volume-up-static"), "['<Ctrl>XF86AudioRaiseVolume']");
  EXPECT_EQ(text(schema + " volume-up"), "['<Super>F12', '<shift>xf86audioraisevolume', '']");
  EXPECT_THAT(text(list), HasSubstr("['/mine/', '" + customs + "valdrix-volume-up/'"));
  EXPECT_EQ(text(custom("valdrix-volume-down-fine", "binding")), "'<Shift>XF86AudioLowerVolume'");
  EXPECT_EQ(text(custom("valdrix-mute", "command")), R"("'/bin/it'\\''s me' key mute --debounce")");
  EXPECT_EQ(desktop.written.back(), list) << "a key that the daemon has is no shortcut's";
  // Its own indicator is switched off: the key is the desktop's.
  custody.setWanted(volume);
  run();
  EXPECT_THAT(custody.state().places, Contains(Pair(MediaKey::brightnessUp, Place::desktop)));
  EXPECT_EQ(text(schema + " screen-brightness-up-static"), "['XF86MonBrightnessUp']");
  EXPECT_THAT(text(list), Not(HasSubstr("brightness")));
  desktop.written.clear();
  custody.restore();
  run();
  EXPECT_EQ(desktop.set, before);
  EXPECT_EQ(desktop.written.front(), list) << "a custom shortcut's key is not the daemon's";
  EXPECT_FALSE(fs::exists(record));
  EXPECT_FALSE(custody.state().isEntrusted);
}

TEST_F(KeyCustodyTest, LeavesNothingHalfWhereverTheProcessEnds) {
  desktop.set[list] = "['/mine/']";
  const auto before = desktop.set;
  Values entrusted;
  start().entrust();
  run();
  entrusted = desktop.set;
  for (const bool isRestoring : {false, true})
    for (int turns = 0;; turns += 7) {
      SCOPED_TRACE((isRestoring ? "restoring, turn " : "entrusting, turn ") +
                   std::to_string(turns));
      desktop.set = isRestoring ? entrusted : before;
      if (!isRestoring) fs::remove(record);
      auto& dying = start();
      run();
      isRestoring ? dying.restore() : dying.entrust();
      loop().turnsLeft = turns;
      run();
      const bool isOver = loop().turnsLeft > 0;
      // Whoever comes next ends what was begun, or had not begun.
      auto& next = start();
      run();
      EXPECT_FALSE(next.state().isBusy || next.state().hasFailed);
      EXPECT_EQ(desktop.set, next.state().isEntrusted ? entrusted : before);
      if (isOver) {
        EXPECT_EQ(next.state().isEntrusted, !isRestoring);
        break;
      }
      if (isRestoring) next.entrust();
      run();
    }
}

TEST_F(KeyCustodyTest, WhatTheUserChangesMeanwhileIsTheirs) {
  auto& custody = start();
  custody.entrust();
  run();
  desktop.set[schema + " volume-mute-static"] = "['<Super>m']";
  desktop.set[list].insert(1, "'/new/', ");
  custody.restore();
  run();
  EXPECT_EQ(desktop.set,
            (Values{{schema + " volume-mute-static", "['<Super>m']"}, {list, "['/new/']"}}));
  // Entrusted, a key that somebody took is taken again, and given back as they had it.
  custody.entrust();
  run();
  desktop.set[schema + " volume-up-static"] = "['XF86AudioRaiseVolume', '<Super>u']";
  auto& next = start();
  run();
  EXPECT_EQ(text(schema + " volume-up-static"), "['<Super>u']");
  next.restore();
  run();
  EXPECT_EQ(text(schema + " volume-up-static"), "['XF86AudioRaiseVolume', '<Super>u']");
}

TEST_F(KeyCustodyTest, ABrokenRecordIsSetAsideAndTheSettingsSpeak) {
  start().entrust();
  run();
  const auto entrusted = desktop.set;
  for (const bool isEntrusted : {true, false}) {
    SCOPED_TRACE(isEntrusted);
    desktop.set = isEntrusted ? entrusted : Values{};
    std::ofstream(record) << "{\"version\": 1, \"entrus";
    auto& custody = start();
    run();
    EXPECT_EQ(custody.state().isEntrusted, isEntrusted);
    custody.restore();
    run();
    EXPECT_EQ(text(schema + " volume-up-static"),
              "['XF86AudioRaiseVolume', '<Ctrl>XF86AudioRaiseVolume']");
    EXPECT_EQ(text(list), "@as []");
    EXPECT_EQ(text(custom("valdrix-mute", "command")), "''");
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(record.parent_path()), {}), 2)
      << "both are kept, and nothing else";
}

TEST_F(KeyCustodyTest, WhatDoesNotAnswerIsSaidAndTriedAgain) {
  desktop.isAnswering = false;
  auto& custody = start();
  custody.entrust();
  run();
  EXPECT_TRUE(custody.state().hasFailed);
  EXPECT_THAT(custody.state().note, HasSubstr("ne laisse pas lire"));
  EXPECT_THAT(custody.state().places, Contains(Pair(MediaKey::mute, Place::desktop)));
  desktop.isAnswering = true;
  loop().advance(6);
  EXPECT_FALSE(custody.state().hasFailed);
  EXPECT_THAT(custody.state().places, Contains(Pair(MediaKey::mute, Place::entrusted)));
  EXPECT_EQ(loop().timerCount(), 0U);
  // On another desktop they stay as they are, until the user wants all back.
  const auto entrusted = desktop.set;
  auto& elsewhere = start("XFCE");
  run();
  EXPECT_EQ(desktop.set, entrusted);
  EXPECT_FALSE(elsewhere.state().isEntrusted);
  elsewhere.restore();
  run();
  EXPECT_THAT(desktop.set, IsEmpty());
  // A record of a version to come is not understood, and so not touched.
  std::ofstream(record) << "{\"version\": 2}";
  start().entrust();
  run();
  EXPECT_THAT(desktop.set, IsEmpty());
}

}  // namespace
}  // namespace valdrix::desktop
