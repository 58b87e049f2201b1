#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusArgument>
#include <QMenu>

#include "desktop/session/QtRunLoop.h"
#include "desktop/tray/StatusNotifierTypes.h"
#include "desktop/tray/TrayItem.h"
#include "tests/session/PrivateBus.h"
#include "tests/support/WaitFor.h"
#include "tests/tray/TrayHost.h"

namespace valdrix::tests {

namespace {

using desktop::DbusMenuLayout;
using desktop::TrayItem;

const QString itemPath = QStringLiteral("/StatusNotifierItem");

class TrayItemTest : public testing::Test {
 protected:
  [[nodiscard]] static view::MenuCommand command(const char* title, std::string& log) {
    return {.title = title, .action = [title, &log] { log += title; }};
  }

  void SetUp() override { ASSERT_TRUE(bus_.start()); }

  [[nodiscard]] bool awaitPlace(TrayItem::Place place) {
    return waitFor([&] { return item_.place() == place; });
  }

  struct Line {
    int id;
    QVariantMap properties;
  };
  /// The menu as the bar sees it.
  [[nodiscard]] static std::vector<Line> lines(TrayHost& host) {
    const auto answer = host.menu("GetLayout", {0, -1, QStringList()});
    std::vector<Line> lines;
    const auto root = qdbus_cast<DbusMenuLayout>(answer.arguments().value(1));
    for (const auto& child : root.children) {
      const auto layout = qdbus_cast<DbusMenuLayout>(child.variant());
      lines.push_back({layout.id, layout.properties});
    }
    return lines;
  }

  PrivateBus bus_;
  desktop::QtRunLoop runLoop_;
  desktop::SessionBus session_{runLoop_};
  std::string log_;
  view::Menu nextMenu_{{command("Un_deux", log_), view::MenuSeparator{}, command("Fin", log_)}};
  TrayItem item_{session_,
                 {"valdrix", "speaker.fill"},
                 {.aboutToShow = [this] { item_.setMenu(nextMenu_); },
                  .activate = [this] { log_ += "activate"; }}};
};

TEST_F(TrayItemTest, BarsLearnWhatTheItemIs) {
  TrayHost host;
  ASSERT_TRUE(awaitPlace(TrayItem::Place::statusNotifierHost));
  ASSERT_EQ(host.items().size(), 1);
  const auto value = [&](const char* name) {
    return host.property(itemPath, TrayHost::itemInterface, name);
  };
  EXPECT_EQ(value("Id"), "valdrix");
  EXPECT_EQ(value("Category"), "ApplicationStatus");
  EXPECT_EQ(value("Status"), "Active");
  EXPECT_EQ(value("ItemIsMenu"), true);
  EXPECT_EQ(qdbus_cast<desktop::StatusNotifierToolTip>(value("ToolTip")).title, "valdrix");

  const auto pictures = qdbus_cast<QList<desktop::StatusNotifierPixmap>>(value("IconPixmap"));
  ASSERT_FALSE(pictures.isEmpty());
  for (const auto& picture : pictures) {
    EXPECT_EQ(picture.pixels.size(), 4 * picture.width * picture.height);
    // The speaker is light in its middle: alpha, red, green, blue.
    const auto middle =
        picture.pixels.mid(4 * (picture.height / 2 * picture.width + picture.width / 3), 4);
    EXPECT_EQ(middle.toHex(), "fff0f0f0") << picture.width;
  }
  EXPECT_EQ(host.call(itemPath, TrayHost::itemInterface, "Activate", {1, 2}).type(),
            QDBusMessage::ReplyMessage);
  EXPECT_TRUE(waitFor([&] { return log_ == "activate"; }));
}

TEST_F(TrayItemTest, ClicksHitWhatTheUserSaw) {
  TrayHost host;
  ASSERT_TRUE(awaitPlace(TrayItem::Place::statusNotifierHost));
  EXPECT_EQ(host.menu("AboutToShow", {0}).arguments().value(0), true);
  EXPECT_EQ(host.menu("AboutToShow", {0}).arguments().value(0), false) << "nothing has changed";
  const auto before = lines(host);
  ASSERT_EQ(before.size(), 3U);
  EXPECT_EQ(before[0].properties["label"], "Un__deux");
  EXPECT_EQ(before[1].properties["type"], "separator");

  auto last = command("Fin", log_);
  last.shortcut = view::KeyboardShortcut{'q'};
  nextMenu_.items = {command("Neuf", log_), view::MenuSeparator{}, command("Un_deux", log_), last};
  const auto revision = host.menu("GetLayout", {0, 0, QStringList()}).arguments().at(0).toUInt();
  EXPECT_EQ(host.menu("AboutToShow", {0}).arguments().value(0), true);
  EXPECT_GT(host.menu("GetLayout", {0, 0, QStringList()}).arguments().at(0).toUInt(), revision);
  const auto after = lines(host);
  ASSERT_EQ(after.size(), 4U);
  EXPECT_EQ(after[1].id, before[1].id);
  EXPECT_EQ(after[2].id, before[0].id);
  EXPECT_EQ(qdbus_cast<desktop::DbusMenuShortcut>(after[3].properties["shortcut"]),
            (desktop::DbusMenuShortcut{{"Control", "q"}}));

  const auto click = [&](int id) {
    return host.menu("Event", {id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0U}).type();
  };
  EXPECT_EQ(click(before[2].id), QDBusMessage::ErrorMessage) << "it had another look";
  EXPECT_EQ(click(after[2].id), QDBusMessage::ReplyMessage);
  EXPECT_EQ(click(after[1].id), QDBusMessage::ReplyMessage) << "a separator does nothing";
  const QList<desktop::DbusMenuEvent> clicks{{after[0].id, "clicked", QDBusVariant(0), 0},
                                             {99, "clicked", QDBusVariant(0), 0},
                                             {after[3].id, "hovered", QDBusVariant(0), 0}};
  const auto answer = host.menu("EventGroup", {QVariant::fromValue(clicks)});
  EXPECT_EQ(qdbus_cast<QList<int>>(answer.arguments().value(0)), QList<int>{99});
  EXPECT_TRUE(waitFor([&] { return log_ == "Un_deuxNeuf"; })) << log_;
}

TEST_F(TrayItemTest, AMenuThatIsOpenIsChangedInPlace) {
  item_.popUpMenu({10, 10});
  auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(menu, nullptr);
  QAction* const chosen = menu->actions().last();
  menu->setActiveAction(chosen);
  nextMenu_.items.insert(nextMenu_.items.begin(), {command("Neuf", log_), view::MenuSeparator{}});
  item_.setMenu(nextMenu_);
  EXPECT_TRUE(menu->isVisible());
  ASSERT_EQ(menu->actions().size(), 5);
  EXPECT_EQ(menu->activeAction(), chosen);
  chosen->trigger();
  EXPECT_TRUE(waitFor([&] { return log_ == "Fin"; }));
}

TEST_F(TrayItemTest, OddCallsAreAnsweredWithErrors) {
  TrayHost host;
  ASSERT_TRUE(awaitPlace(TrayItem::Place::statusNotifierHost));
  const QString menuPath = itemPath + "/Menu";
  const QString properties = "org.freedesktop.DBus.Properties";
  const QString item = TrayHost::itemInterface;
  const QString menu = TrayHost::menuInterface;
  const struct {
    QString path, interface, method;
    QVariantList arguments;
    const char* error;
  } rows[]{
      {menuPath, menu, "GetLayout", {}, "InvalidArgs"},
      {menuPath, menu, "GetLayout", {77, -1, QStringList()}, "InvalidArgs"},
      {menuPath, menu, "GetLayout", {"0", -1, QStringList()}, "InvalidArgs"},
      {menuPath, menu, "GetProperty", {0, "label"}, "InvalidArgs"},
      {menuPath, menu, "AboutToShow", {-1}, "InvalidArgs"},
      {menuPath, menu, "Destroy", {}, "UnknownMethod"},
      {menuPath, item, "Activate", {0, 0}, "UnknownInterface"},
      {itemPath, item, "Activate", {}, "InvalidArgs"},
      {itemPath, properties, "Get", {item, "Colour"}, "UnknownProperty"},
      {itemPath, properties, "Get", {menu, "Version"}, "UnknownInterface"},
      {itemPath, properties, "Get", {item}, "InvalidArgs"},
      {itemPath,
       properties,
       "Set",
       {item, "Title", QVariant::fromValue(QDBusVariant("x"))},
       "PropertyReadOnly"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(
        host.call(row.path, row.interface, row.method, row.arguments).errorName().toStdString(),
        std::string("org.freedesktop.DBus.Error.") + row.error)
        << row.method.toStdString();
}

TEST_F(TrayItemTest, ItComesAndGoesWithTheBarAndTheBus) {
  using Place = TrayItem::Place;
  EXPECT_EQ(item_.place(), Place::nowhere);
  {
    TrayHost withoutBar(false);
    EXPECT_TRUE(waitFor([&] { return withoutBar.items().size() == 1; }));
    EXPECT_EQ(item_.place(), Place::nowhere);
  }
  for (const bool restartsBus : {false, true}) {
    if (restartsBus) {
      bus_.kill();
      EXPECT_TRUE(awaitPlace(Place::nowhere));
      ASSERT_TRUE(bus_.start());
    }
    TrayHost host;
    EXPECT_TRUE(awaitPlace(Place::statusNotifierHost));
    // What was asked of the bar before may have been answered by this one already.
    EXPECT_TRUE(waitFor([&] { return host.items().size() == 1; }));
    item_.setMenu(nextMenu_);
    EXPECT_EQ(lines(host).size(), 3U);
    if (restartsBus) break;
  }
  EXPECT_TRUE(awaitPlace(Place::nowhere));
}

}  // namespace

}  // namespace valdrix::tests
