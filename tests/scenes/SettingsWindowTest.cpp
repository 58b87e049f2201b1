// The settings window: when its tabs begin and end, and the keys that work in it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QPointer>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>

#include "desktop/scenes/FormView.h"
#include "desktop/scenes/QtSceneHost.h"
#include "desktop/session/QtRunLoop.h"
#include "observation/Observed.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using testing::ElementsAre;
using tests::waitFor;

/// What the tabs of a test work with, and what became of them.
struct World {
  Observed<int> first{0};
  Observed<int> second{0};
  std::vector<std::string> log;
  int bodies = 0;
};

/// Twice as tall as the window, without a control.
view::Form tallForm() {
  const view::FormRow row{view::FormText{"Texte"}};
  return {{{.header = "Textes", .rows = std::vector<view::FormRow>(25, row)}}};
}

class TestTab final : public view::TabView {
 public:
  TestTab(World& world, std::string name) : world_(world), name_(std::move(name)) {
    world_.log.push_back("+" + name_);
  }
  ~TestTab() override { world_.log.push_back("-" + name_); }

  [[nodiscard]] view::TabContent body() const override {
    ++world_.bodies;
    const auto sum = std::to_string(world_.first.get() + world_.second.get());
    if (name_ == "c") return view::AboutPanel();
    if (name_ == "b") return tallForm();
    return view::Form{
        {{.header = name_, .rows = {{view::Toggle{.label = {.title = sum}, .set = [this](bool) {
                                                    world_.first = 7;
                                                  }}}}}}};
  }

 private:
  World& world_;
  std::string name_;
};

class SettingsWindowTest : public testing::Test {
 protected:
  SettingsWindowTest() {
    view::SettingsScene scene{.size = {520, 460}, .tabs = {}};
    for (const char* name : {"a", "b", "c"})
      scene.tabs.push_back({name, "gear", [this, tab = std::string(name)] {
                              return std::make_unique<TestTab>(world_, tab);
                            }});
    settings_ = host_.addSettings(std::move(scene));
  }

  /// Opens the window and waits until its keys work.
  SettingsWindow& open() {
    host_.openSettings(std::nullopt);
    EXPECT_TRUE(waitFor([this] { return host_.settingsWindow()->isActiveWindow(); }));
    return *host_.settingsWindow();
  }
  [[nodiscard]] bool isGone() {
    return waitFor([this] { return !host_.settingsWindow(); });
  }
  std::vector<std::string> takeLog() { return std::exchange(world_.log, {}); }

  World world_;
  QtRunLoop runLoop_;
  SessionBus bus_{runLoop_};
  QtSceneHost host_{bus_};
  Token settings_;
};

TEST_F(SettingsWindowTest, TabExistsWhileItIsOnScreen) {
  auto* const window = &open();
  EXPECT_THAT(takeLog(), ElementsAre("+a"));
  EXPECT_EQ(window->findChild<FormView*>()->size(), QSize(520, 460));
  EXPECT_EQ(window->minimumSize(), window->maximumSize());
  host_.openSettings(1);
  EXPECT_EQ(host_.settingsWindow(), window);
  EXPECT_THAT(takeLog(), ElementsAre("-a", "+b"));
  QTest::keyClick(window, Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_THAT(takeLog(), ElementsAre("-b", "+c"));
  window->close();
  EXPECT_THAT(takeLog(), ElementsAre("-c"));
  // Opened again before the loop turned, it is the same window on the same tab.
  host_.openSettings(std::nullopt);
  EXPECT_THAT(takeLog(), ElementsAre("+c"));
  QApplication::processEvents();
  EXPECT_EQ(host_.settingsWindow(), window);

  window->close();
  EXPECT_TRUE(isGone());
  host_.openSettings(std::nullopt);
  EXPECT_EQ(host_.settingsWindow()->tab(), 2U);
  takeLog();
  settings_.reset();
  EXPECT_EQ(host_.settingsWindow(), nullptr);
  EXPECT_THAT(takeLog(), ElementsAre("-c"));
}

TEST_F(SettingsWindowTest, FollowsItsValuesOncePerTurn) {
  host_.openSettings(std::nullopt);
  QApplication::processEvents();
  const int before = world_.bodies;
  world_.first = 1;
  world_.second = 2;
  world_.first = 3;
  EXPECT_EQ(world_.bodies, before);
  const QPointer<QCheckBox> toggle = host_.settingsWindow()->findChild<QCheckBox*>();
  ASSERT_TRUE(waitFor([&] { return toggle->accessibleName() == "5"; }));
  EXPECT_EQ(world_.bodies, before + 1);
  // The description is asked for after a flip, and it says that the toggle is off.
  toggle->click();
  ASSERT_TRUE(waitFor([&] { return toggle && !toggle->isChecked(); }));
  EXPECT_EQ(toggle->accessibleName(), "9");
}

TEST_F(SettingsWindowTest, KeysScrollWhereNothingTakesThem) {
  auto& window = open();
  window.selectTab(1);
  window.findChild<QTabBar*>()->setFocus();
  QApplication::processEvents();
  const auto* const bar = window.findChild<FormView*>()->verticalScrollBar();
  ASSERT_GT(bar->maximum(), 0);
  std::vector<int> places;
  for (const auto key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Home}) {
    QTest::keyClick(QApplication::focusWidget(), key);
    places.push_back(bar->value());
  }
  EXPECT_THAT(places, ElementsAre(bar->singleStep(), 0, bar->pageStep(), bar->maximum(), 0));
}

TEST_F(SettingsWindowTest, KeysCloseItAndGiveTheMenusCommands) {
  for (const auto& [key, modifiers] :
       std::initializer_list<std::pair<Qt::Key, Qt::KeyboardModifier>>{
           {Qt::Key_Escape, Qt::NoModifier}, {Qt::Key_W, Qt::ControlModifier}}) {
    QTest::keyClick(&open(), key, modifiers);
    EXPECT_TRUE(isGone());
  }
  std::vector<std::string> done;
  bool isMenuMade = false;
  Observed<bool> hasUpdate(false);
  const auto extra = host_.addMenuBarExtra(
      {"valdrix", "gear", [&] {
         view::Menu menu;
         isMenuMade = true;
         if (hasUpdate) menu.items.emplace_back(view::MenuCommand{"Nouvelle version", [] {}});
         menu.items.emplace_back(
             view::MenuCommand{"Préférences…", [&] { done.push_back("open"); }, {{','}}});
         menu.items.emplace_back(
             view::MenuCommand{"Quitter", [&] { done.push_back("quit"); }, {{'q'}}});
         return menu;
       }});
  open();
  ASSERT_TRUE(waitFor([&] { return isMenuMade; }));
  hasUpdate = true;
  QTest::keyClick(host_.settingsWindow(), Qt::Key_Comma, Qt::ControlModifier);
  QWidget other;
  other.show();
  QTest::keyClick(&other, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_THAT(done, ElementsAre("open", "quit"));
}

}  // namespace
}  // namespace valdrix::desktop
