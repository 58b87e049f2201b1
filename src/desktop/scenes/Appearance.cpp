#include "desktop/scenes/Appearance.h"

#include <QApplication>
#include <QStyle>
#include <QWindow>

#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

struct Colors {
  QColor window, text, base, alternateBase, control, light, shadow, accent, link, disabled;
};

// Each text keeps 4.5 to 1 from what it lies on, white on the accent included, and the accent 3 to
// 1 from a group of rows.
const Colors& lightColors() {
  static const Colors colors{0xF1F1F3, 0x1C1C1F, 0xFFFFFF, 0xF6F6F8, 0xFAFAFB,
                             0xFFFFFF, 0x76767A, 0x1C71D8, 0x1A5FB4, 0x8B8B90};
  return colors;
}
const Colors& darkColors() {
  static const Colors colors{0x202023, 0xF2F2F4, 0x18181B, 0x262629, 0x36363B,
                             0x4A4A50, 0x0C0C0D, 0x2674DC, 0x78AEED, 0x85858B};
  return colors;
}

/// Whether Qt has the colours from the desktop, and not from its own style or the stand-in that it
/// takes in a KDE session whose settings name none.
bool isDesktops(const QPalette& palette) {
  constexpr QRgb kdeStandIn = 0xFFD6D2D0;
  return palette != QApplication::style()->standardPalette() &&
         palette.color(QPalette::Window).rgb() != kdeStandIn;
}

/// A wish that the desktop's palette does not fulfil is fulfilled by ours, unless the user chose
/// who gives Qt its colours.
bool isOursNeeded(const QPalette& palette, ColorScheme wanted) {
  const bool isKnown = isDesktops(palette);
  if (isKnown && qEnvironmentVariableIsSet("QT_QPA_PLATFORMTHEME")) return false;
  if (!isKnown && QApplication::style()->name() == QLatin1String("fusion")) return true;
  const bool isDarkWanted = wanted == ColorScheme::dark;
  return wanted != ColorScheme::noPreference && formStyle::isDark(palette) != isDarkWanted;
}

/// A menu's, which lies on anything, the black panel among it: lighter than a window, with an edge.
QPalette menuPalette(QPalette palette) {
  const QColor text = palette.color(QPalette::WindowText);
  const QColor window = palette.color(QPalette::Window);
  palette.setColor(QPalette::Base, formStyle::mixed(window, text, 0.06));
  palette.setColor(QPalette::Window, formStyle::mixed(window, text, 0.28));
  return palette;
}

}  // namespace

ColorScheme colorSchemeOfTheme(std::string_view name) {
  // Adwaita-dark, Adwaita:dark, Yaru-blue-dark, Mint-Y-Dark-Aqua
  const auto lowered = QLatin1String(name.data(), static_cast<qsizetype>(name.size()));
  const QStringList words = QString(lowered).toLower().replace(u':', u'-').split(u'-');
  return words.contains(QLatin1String("dark")) ? ColorScheme::dark : ColorScheme::noPreference;
}

QPalette ownPalette(bool isDark) {
  const Colors& colors = isDark ? darkColors() : lightColors();
  QPalette palette(colors.text, colors.control, colors.light, colors.shadow,
                   formStyle::mixed(colors.control, colors.shadow, 0.5), colors.text, Qt::white,
                   colors.base, colors.window);
  palette.setColor(QPalette::AlternateBase, colors.alternateBase);
  palette.setColor(QPalette::ToolTipBase, colors.control);
  palette.setColor(QPalette::ToolTipText, colors.text);
  palette.setColor(QPalette::PlaceholderText, colors.disabled);
  palette.setColor(QPalette::Highlight, colors.accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, colors.link);
  palette.setColor(QPalette::LinkVisited, colors.link);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, colors.disabled);
  return palette;
}

Appearance::Appearance(SessionBus& bus) : portal_(bus, [this] { apply(); }) {
  // A window of ours is in front, for the first time perhaps.
  QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &context_, [this](QWindow* window) {
    if (window) portal_.wantAnswer();
  });
  apply();
}

Appearance::~Appearance() { QApplication::setPalette(QPalette()); }

void Appearance::setThemeName(const std::string& name) {
  themeScheme_ = colorSchemeOfTheme(name);
  apply();
}

void Appearance::apply() {
  const auto told = portal_.colorScheme();
  const auto wanted = told == ColorScheme::noPreference ? themeScheme_ : told;
  QApplication::setPalette(QPalette());
  if (isOursNeeded(QApplication::palette(), wanted))
    QApplication::setPalette(ownPalette(wanted == ColorScheme::dark));
  const QPalette shown = QApplication::palette();
  QApplication::setPalette(formStyle::isDark(shown) ? menuPalette(shown) : shown, "QMenu");
}

}  // namespace valdrix::desktop
