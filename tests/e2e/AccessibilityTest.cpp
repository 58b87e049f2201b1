// The settings and the privacy page as a screen reader drives them.

#include <gtest/gtest.h>
#include <optional>
#include <vector>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QFile>
#include <QJsonArray>

#include "tests/e2e/AgentDesktop.h"
#include "tests/session/PrivateBus.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

/// A thing in the accessibility tree: whose it is, and where there.
struct Accessible {
  QString service;
  QDBusObjectPath path;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Accessible& accessible) {
  argument.beginStructure();
  argument << accessible.service << accessible.path;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Accessible& accessible) {
  argument.beginStructure();
  argument >> accessible.service >> accessible.path;
  argument.endStructure();
  return argument;
}

}  // namespace valdrix::tests

Q_DECLARE_METATYPE(valdrix::tests::Accessible)

namespace valdrix::tests {

namespace {

// AtspiRole and AtspiStateType of the AT-SPI protocol.
constexpr unsigned checkBoxRole = 7;
constexpr unsigned checkedState = 4;
// The status of the access to calendars.
constexpr int denied = 2;
constexpr int fullAccess = 3;

/// The tree of everything that programs show, as the accessibility bus hands it out.
class AccessibilityTree {
 public:
  AccessibilityTree() : bus_(connect()) {
    qDBusRegisterMetaType<Accessible>();
    qDBusRegisterMetaType<QList<Accessible>>();
  }
  ~AccessibilityTree() { QDBusConnection::disconnectFromBus(bus_.name()); }
  AccessibilityTree(const AccessibilityTree&) = delete;
  AccessibilityTree& operator=(const AccessibilityTree&) = delete;

  /// Who stands first in the tree under that name and in that role.
  [[nodiscard]] std::optional<Accessible> find(const QString& name, unsigned role) const {
    return find(root_, name, role, 0);
  }
  [[nodiscard]] bool isChecked(const Accessible& thing) const {
    const QDBusReply<QList<quint32>> states = ask(thing, "Accessible", "GetState");
    return states.isValid() && !states.value().isEmpty() &&
           (states.value()[0] >> checkedState & 1U) != 0;
  }
  /// Does the action that a screen reader does at the press of its own key.
  [[nodiscard]] bool act(const Accessible& thing) const {
    const QDBusReply<bool> isDone = ask(thing, "Action", "DoAction", {0});
    return isDone.isValid() && isDone.value();
  }

 private:
  static QDBusConnection connect() {
    const QDBusReply<QString> address =
        QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
            "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"));
    return QDBusConnection::connectToBus(address.value(), "accessibility");
  }

  [[nodiscard]] QDBusMessage ask(const Accessible& thing, const QString& interface,
                                 const QString& method, const QVariantList& arguments = {}) const {
    auto call = QDBusMessage::createMethodCall(thing.service, thing.path.path(),
                                               "org.a11y.atspi." + interface, method);
    call.setArguments(arguments);
    return bus_.call(call);
  }

  [[nodiscard]] QString nameOf(const Accessible& thing) const {
    auto call = QDBusMessage::createMethodCall(thing.service, thing.path.path(),
                                               "org.freedesktop.DBus.Properties", "Get");
    call.setArguments({"org.a11y.atspi.Accessible", "Name"});
    const QDBusReply<QDBusVariant> name = bus_.call(call);
    return name.isValid() ? name.value().variant().toString() : QString();
  }

  [[nodiscard]] std::optional<Accessible> find(const Accessible& from, const QString& name,
                                               unsigned role, int depth) const {
    constexpr int deepest = 20;
    if (depth > deepest) return std::nullopt;
    const QDBusReply<quint32> ownRole = ask(from, "Accessible", "GetRole");
    if (ownRole.isValid() && ownRole.value() == role && nameOf(from) == name) return from;
    const QDBusReply<QList<Accessible>> children = ask(from, "Accessible", "GetChildren");
    if (!children.isValid()) return std::nullopt;
    for (const auto& child : children.value())
      if (const auto found = find(child, name, role, depth + 1)) return found;
    return std::nullopt;
  }

  QDBusConnection bus_;
  Accessible root_{"org.a11y.atspi.Registry", QDBusObjectPath("/org/a11y/atspi/accessible/root")};
};

TEST(Accessibility, SettingsAndPermissionsAreChanged) {
  PrivateBus bus("/usr/share/dbus-1/services");
  ASSERT_TRUE(bus.start());
  qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
  const AccessibilityTree tree;
  AgentDesktop desktop({.sharesBus = true});
  ASSERT_TRUE(desktop.startAgent());
  ASSERT_EQ(desktop.command({"settings", "huds"}).exitCode, 0);

  std::optional<Accessible> control;
  ASSERT_TRUE(waitFor([&] {
    control = tree.find("Afficher le HUD volume", checkBoxRole);
    return control.has_value();
  }));
  const auto holdsKey = [&] { return desktop.keyState("volume-up") == "held"; };
  EXPECT_TRUE(tree.isChecked(*control));
  EXPECT_TRUE(tree.act(*control));
  EXPECT_TRUE(waitFor([&] { return !tree.isChecked(*control) && !holdsKey(); }));
  EXPECT_TRUE(waitFor([&] {
    QFile preferences(desktop.preferencesFile());
    return preferences.open(QIODevice::ReadOnly) &&
           preferences.readAll().contains("volumeHUDEnabled=false");
  }));
  desktop.keys.tap(key::volumeUp);
  EXPECT_EQ(desktop.presentation(), "collapsed");
  EXPECT_TRUE(desktop.awaitVolume(0.5)) << "nobody turned it up";

  EXPECT_TRUE(tree.act(*control));
  EXPECT_TRUE(waitFor(holdsKey));
  desktop.keys.tap(key::volumeUp);
  EXPECT_TRUE(desktop.awaitPresentation("volumeHUD"));

  ASSERT_EQ(desktop.command({"permissions", "calendriers"}).exitCode, 0);
  ASSERT_TRUE(waitFor([&] {
    control = tree.find("Lire mes calendriers", checkBoxRole);
    return control.has_value();
  }));
  for (const int status : {fullAccess, denied}) {
    EXPECT_TRUE(tree.act(*control));
    EXPECT_TRUE(waitFor(
        [&] { return desktop.status()["calendar"].toObject()["authStatus"].toInt() == status; }));
  }
  qunsetenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON");
}

}  // namespace

}  // namespace valdrix::tests
