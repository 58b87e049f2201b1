// Light or dark, as the desktop's portal and its theme say.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include "desktop/scenes/Appearance.h"
#include "desktop/scenes/FormStyle.h"
#include "desktop/scenes/Switch.h"
#include "desktop/scenes/TextLabel.h"
#include "desktop/session/QtRunLoop.h"
#include "tests/session/PrivateBus.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using tests::waitFor;

/// The settings portal of a desktop, which knows the colour scheme alone.
class Portal : private QDBusVirtualObject {
 public:
  explicit Portal(unsigned scheme)
      : scheme_(scheme),
        connection_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, "portal")) {
    connection_.registerVirtualObject(path, this);
    connection_.registerService("org.freedesktop.portal.Desktop");
  }
  ~Portal() override { QDBusConnection::disconnectFromBus(connection_.name()); }

  void change(unsigned scheme) {
    scheme_ = scheme;
    auto news = QDBusMessage::createSignal(path, interface, "SettingChanged");
    news << group << "color-scheme" << QVariant::fromValue(QDBusVariant(scheme));
    connection_.send(news);
  }

 private:
  static constexpr auto path = "/org/freedesktop/portal/desktop";
  static constexpr auto interface = "org.freedesktop.portal.Settings";
  static constexpr auto group = "org.freedesktop.appearance";

  [[nodiscard]] QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
    const bool isKnown = call.interface() == interface && call.member() == "Read" &&
                         call.arguments() == QVariantList{group, "color-scheme"};
    if (!isKnown) return false;
    const QDBusVariant inner{QVariant(scheme_)};
    const auto outer = QVariant::fromValue(QDBusVariant(QVariant::fromValue(inner)));
    return connection.send(call.createReply(outer));
  }

  unsigned scheme_;
  QDBusConnection connection_;
};

bool isDark() { return formStyle::isDark(QApplication::palette()); }
bool becomesDark() { return waitFor(isDark); }
bool becomesLight() {
  return waitFor([] { return !isDark(); });
}

TEST(Appearance, FollowsAPortalThatComesAndGoes) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  SessionBus session(runLoop);
  Appearance appearance(session);
  EXPECT_FALSE(isDark());
  QWidget window;
  TextLabel text({.prominence = view::Prominence::secondary}, &window);
  text.makeSelectable();
  window.show();
  {
    Portal portal(1);
    EXPECT_TRUE(becomesDark());
    portal.change(2);
    EXPECT_TRUE(becomesLight());
    portal.change(1);
    EXPECT_TRUE(becomesDark());
  }
  Portal next(0);
  EXPECT_TRUE(becomesLight());
  appearance.setThemeName("Adwaita-dark");
  EXPECT_TRUE(isDark());
  next.change(2);
  EXPECT_TRUE(becomesLight()) << "what the portal says counts first";
  EXPECT_GE(formStyle::contrast(text.palette().color(QPalette::WindowText),
                                window.palette().color(QPalette::Window)),
            formStyle::textContrast);
}

TEST(Appearance, DarkThemesAreKnownByTheirNames) {
  for (const char* dark : {"Adwaita-dark", "Adwaita:dark", "Yaru-blue-dark", "Mint-Y-Dark-Aqua"})
    EXPECT_EQ(colorSchemeOfTheme(dark), ColorScheme::dark) << dark;
  for (const char* other : {"", "Adwaita", "Darkness-light", "Greybird"})
    EXPECT_EQ(colorSchemeOfTheme(other), ColorScheme::noPreference) << other;
}

TEST(Appearance, TextsStandOutFromWhatTheyLieOn) {
  using namespace formStyle;
  for (const bool dark : {false, true}) {
    SCOPED_TRACE(dark ? "dark" : "light");
    const QPalette own = ownPalette(dark);
    const QColor window = own.color(QPalette::Window);
    const QColor group = groupFill(own);
    for (const QColor& text : {own.color(QPalette::WindowText), dimmedText(own), accentInk(own)}) {
      EXPECT_GE(contrast(text, window), textContrast);
      EXPECT_GE(contrast(text, group), textContrast);
    }
    EXPECT_GE(contrast(accentInk(own), controlFill(own, false)), textContrast);
    EXPECT_GE(contrast(own.color(QPalette::ButtonText), own.color(QPalette::Button)), textContrast);
    EXPECT_GE(contrast(own.color(QPalette::HighlightedText), accentFill(own)), textContrast);
    EXPECT_GE(contrast(own.color(QPalette::HighlightedText), own.color(QPalette::Highlight)),
              textContrast);
    EXPECT_GE(contrast(own.color(QPalette::Highlight), group), shapeContrast);
    EXPECT_GE(contrast(switchTrack(own), group), shapeContrast);
    EXPECT_GE(contrast(symbolInk(own, QColor(0xD9730D)), group), shapeContrast);
  }
  Switch lit;
  QPalette desktops = ownPalette(false);
  desktops.setColor(QPalette::Highlight, 0x3DAEE9);
  lit.setPalette(desktops);
  lit.setChecked(true);
  const QImage picture = lit.grab().toImage();
  EXPECT_GE(contrast(picture.pixelColor(picture.width() / 3, picture.height() / 2), Qt::white),
            textContrast);
}

}  // namespace
}  // namespace valdrix::desktop
