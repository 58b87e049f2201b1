#pragma once

#include <array>

#include <QString>
#include <QStringList>
#include <QVariantList>

#include "desktop/keys/KeySource.h"

namespace valdrix::desktop {

/// A shortcut under which this program has a media key at kglobalaccel. The service tells the name
/// of what was triggered and not by which of its keys, so a key with Shift is an action of its own.
struct KGlobalAccelAction {
  platform::MediaKey key;
  bool hasShift;
  int qtKey;         ///< with its modifiers
  const char* name;  ///< unique in the component
  const char* friendlyName;

  static constexpr auto component = "valdrix";

  /// As the service names it. Only the first two count, but it takes nothing shorter.
  [[nodiscard]] QStringList id() const {
    return {QString::fromLatin1(component), QString::fromLatin1(name),
            QString::fromLatin1(component), QString::fromUtf8(friendlyName)};
  }
  /// As it is named to be unregistered.
  [[nodiscard]] QVariantList place() const {
    return {QString::fromLatin1(component), QString::fromLatin1(name)};
  }
};

inline constexpr auto kGlobalAccelActions = [] {
  using enum platform::MediaKey;
  constexpr int shift = Qt::ShiftModifier;
  return std::to_array<KGlobalAccelAction>({
      {volumeUp, false, Qt::Key_VolumeUp, "volume-up", "Volume plus fort"},
      {volumeUp, true, Qt::Key_VolumeUp | shift, "volume-up-fine", "Volume un peu plus fort"},
      {volumeDown, false, Qt::Key_VolumeDown, "volume-down", "Volume moins fort"},
      {volumeDown, true, Qt::Key_VolumeDown | shift, "volume-down-fine",
       "Volume un peu moins fort"},
      {mute, false, Qt::Key_VolumeMute, "mute", "Muet"},
      {mute, true, Qt::Key_VolumeMute | shift, "mute-fine", "Muet (avec Maj)"},
      {brightnessUp, false, Qt::Key_MonBrightnessUp, "brightness-up", "Luminosité plus forte"},
      {brightnessUp, true, Qt::Key_MonBrightnessUp | shift, "brightness-up-fine",
       "Luminosité un peu plus forte"},
      {brightnessDown, false, Qt::Key_MonBrightnessDown, "brightness-down",
       "Luminosité moins forte"},
      {brightnessDown, true, Qt::Key_MonBrightnessDown | shift, "brightness-down-fine",
       "Luminosité un peu moins forte"},
  });
}();

}  // namespace valdrix::desktop
