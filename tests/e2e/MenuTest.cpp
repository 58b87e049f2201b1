#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusConnection>

#include "desktop/session/AgentNames.h"
#include "desktop/tray/DbusMenuTypes.h"
#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"
#include "tests/tray/TrayHost.h"

namespace valdrix::tests {

namespace {

constexpr xcb_keysym_t escapeKey = 0xFF1B;
constexpr xcb_keysym_t returnKey = 0xFF0D;
constexpr xcb_keysym_t upKey = 0xFF52;

QString shownIn(const AgentDesktop& desktop) {
  return desktop.status()["backends"].toObject()["sceneHost"].toString();
}

/// The number of the item with that label in the menu that a bar sees; 0 without one.
int itemLabelled(TrayHost& host, const QString& label) {
  const auto answer = host.menu("GetLayout", {0, -1, QStringList()});
  const auto root = qdbus_cast<desktop::DbusMenuLayout>(answer.arguments().value(1));
  for (const auto& child : root.children) {
    const auto item = qdbus_cast<desktop::DbusMenuLayout>(child.variant());
    if (item.properties["label"] == label) return item.id;
  }
  return 0;
}

TEST(Menu, ABarShowsTheItemAndQuitsByIt) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  EXPECT_EQ(shownIn(desktop), "qt, no tray");
  TrayHost host;
  ASSERT_TRUE(waitFor([&] { return shownIn(desktop) == "qt, status notifier item"; }));
  EXPECT_NE(itemLabelled(host, "Préférences…"), 0);
  for (const char* window : {"OpenSettings", "OpenPermissions"})
    for (const int tab : {99, -7})
      EXPECT_EQ(
          QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), "tabs")
              .call(desktop::AgentNames::call(window, {tab, ""}))
              .errorName(),
          desktop::AgentNames::refusal);
  const int quit = itemLabelled(host, "Quitter valdrix");
  ASSERT_NE(quit, 0);
  (void)host.menu("Event", {quit, "clicked", QVariant::fromValue(QDBusVariant(0)), 0U});
  EXPECT_TRUE(waitFor([&] { return !desktop.isAgentRunning(); }));
}

TEST(Menu, AnXServersTrayShowsTheItemWhereNoBarDoes) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  const auto awaitPlace = [&](const char* place) {
    return waitFor([&] { return shownIn(desktop) == place; });
  };
  {
    const ChildProcess tray("trayer", {}, desktop.display().environment());
    EXPECT_TRUE(awaitPlace("qt, x11 tray"));
    {
      const TrayHost host;
      EXPECT_TRUE(awaitPlace("qt, status notifier item"));
    }
    EXPECT_TRUE(awaitPlace("qt, x11 tray"));
  }
  EXPECT_TRUE(awaitPlace("qt, no tray"));
}

TEST(Menu, ARightClickOnTheNotchOpensIt) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.display().startWindowManager());
  ASSERT_TRUE(desktop.startAgent());
  auto& display = desktop.display();
  display.movePointer(inNotch);
  ASSERT_TRUE(desktop.awaitPresentation("expanded"));
  // In the first line, beside its text.
  const QPoint inMenu = inNotch + QPoint(4, 6);
  const auto isOpen = [](QRgb color) { return !isBlack(color); };
  const auto open = [&] {
    display.click(3);
    return desktop.awaitPixel(inMenu, isOpen);
  };

  ASSERT_TRUE(open());
  EXPECT_TRUE(display.tapKey(escapeKey));
  EXPECT_TRUE(desktop.awaitPixel(inMenu, isBlack));

  ASSERT_TRUE(open());
  display.movePointer({300, 700});
  EXPECT_EQ(desktop.presentation(), "expanded") << "the panel waits for the menu";
  display.click();
  EXPECT_TRUE(desktop.awaitPresentation("collapsed"));
  EXPECT_EQ(desktop.background.presses(), 0) << "the click that closes a menu does nothing else";

  display.movePointer(inNotch);
  ASSERT_TRUE(desktop.awaitPresentation("expanded"));
  ASSERT_TRUE(open());
  EXPECT_TRUE(display.tapKey(upKey));
  EXPECT_TRUE(display.tapKey(returnKey));
  EXPECT_TRUE(waitFor([&] { return !desktop.isAgentRunning(); })) << "the last line quits";
}

}  // namespace

}  // namespace valdrix::tests
