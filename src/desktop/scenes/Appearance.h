#pragma once

#include <string>
#include <string_view>

#include <QObject>
#include <QPalette>

#include "desktop/session/AppearancePortal.h"

namespace valdrix::desktop {

/// The wish that the name of a theme expresses: those of the dark ones say so. Nothing else can be
/// told from one.
[[nodiscard]] ColorScheme colorSchemeOfTheme(std::string_view name);

/// The colours of our own, for desktops that give Qt none.
[[nodiscard]] QPalette ownPalette(bool isDark);

/// Gives all windows of the program light or dark colours, as the desktop wishes, and follows it:
/// what the portal says counts, then the name of the window system's theme. The colours are the
/// desktop's own where Qt knows them and they are what is wished for, and ours elsewhere. Needs a
/// QApplication; main thread only.
class Appearance {
 public:
  /// `bus` must outlive it.
  explicit Appearance(SessionBus& bus);
  ~Appearance();
  Appearance(const Appearance&) = delete;
  Appearance& operator=(const Appearance&) = delete;

  /// Says what theme the window system has programs use; empty when it has none.
  void setThemeName(const std::string& name);

 private:
  void apply();

  AppearancePortal portal_;
  ColorScheme themeScheme_ = ColorScheme::noPreference;
  QObject context_;
};

}  // namespace valdrix::desktop
