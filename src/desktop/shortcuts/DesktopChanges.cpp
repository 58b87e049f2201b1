#include "desktop/shortcuts/DesktopChanges.h"

#include <algorithm>
#include <array>

#include "desktop/shortcuts/GVariantStrings.h"

namespace valdrix::desktop {

namespace {

using platform::MediaKey;
using Kind = SettingChange::Kind;
using Changes = std::vector<SettingChange>;

struct ShortcutKey {
  MediaKey key;
  const char* symbol;   ///< as keyboards' layouts name it
  const char* setting;  ///< as the settings daemons that come from GNOME's name its action
  const char* title;    ///< for the user, in the list of shortcuts
};
constexpr std::array<ShortcutKey, 5> shortcutKeys{
    {{MediaKey::volumeUp, "XF86AudioRaiseVolume", "volume-up", "Volume plus fort"},
     {MediaKey::volumeDown, "XF86AudioLowerVolume", "volume-down", "Volume moins fort"},
     {MediaKey::mute, "XF86AudioMute", "volume-mute", "Muet"},
     {MediaKey::brightnessUp, "XF86MonBrightnessUp", "screen-brightness-up",
      "Luminosité plus forte"},
     {MediaKey::brightnessDown, "XF86MonBrightnessDown", "screen-brightness-down",
      "Luminosité moins forte"}}};

std::vector<ShortcutKey> among(const KnownDesktop::Keys& keys) {
  std::vector<ShortcutKey> found;
  std::ranges::copy_if(shortcutKeys, std::back_inserter(found),
                       [&](const ShortcutKey& one) { return keys.contains(one.key); });
  return found;
}

SettingChange inGSettings(const ShortcutKey& key, const std::string& setting, Kind kind,
                          std::vector<std::string> texts) {
  return {.store = "gsettings",
          .setting = setting,
          .kind = kind,
          .texts = std::move(texts),
          .keys = {key.key}};
}

constexpr auto gnomeSchema = "org.gnome.settings-daemon.plugins.media-keys";

/// A command that GNOME runs for a key, alone or with Shift.
struct Shortcut {
  ShortcutKey key;
  bool isFine;

  [[nodiscard]] std::string path() const {
    return "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/valdrix-" + word() +
           (isFine ? "-fine/" : "/");
  }
  [[nodiscard]] std::string word() const { return std::string(platform::wordOf(key.key)); }
  [[nodiscard]] std::string title() const {
    return std::string("valdrix : ") + key.title + (isFine ? ", pas fin" : "");
  }
  [[nodiscard]] std::string binding() const { return (isFine ? "<Shift>" : "") + symbol(); }
  [[nodiscard]] std::string symbol() const { return key.symbol; }
  // GNOME repeats the command while the key is held and does not say so.
  [[nodiscard]] std::string command(const std::string& program) const {
    const bool isMute = key.key == MediaKey::mute;
    return shellQuoted(program) + " key " + word() + (isFine ? " --fine" : "") +
           (isMute ? " --debounce" : "");
  }

 private:
  static std::string shellQuoted(const std::string& word) {
    std::string quoted = "'";
    for (const char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + '\'';
  }
};

std::vector<Shortcut> shortcuts(const KnownDesktop::Keys& keys) {
  std::vector<Shortcut> all;
  for (const auto& key : among(keys))
    for (const bool isFine : {false, true})
      if (key.key != MediaKey::mute || !isFine) all.push_back({key, isFine});
  return all;
}

void appendShortcut(Changes& changes, const Shortcut& shortcut, const std::string& program) {
  const auto part = [&](const char* name, const std::string& text) {
    changes.push_back(
        inGSettings(shortcut.key,
                    std::string(gnomeSchema) + ".custom-keybinding:" + shortcut.path() + ' ' + name,
                    Kind::assign, {gvariantText(text)}));
    changes.back().isOwn = true;
  };
  part("name", shortcut.title());
  part("command", shortcut.command(program));
  part("binding", shortcut.binding());
}

/// Frees `accelerator` of an action: what is read on change last.
void appendRelease(Changes& changes, const ShortcutKey& key, const std::string& action,
                   const std::string& accelerator, bool isOptional) {
  const auto setting = std::string(gnomeSchema) + ' ' + action;
  changes.push_back(inGSettings(key, setting + "-static", Kind::remove, {accelerator}));
  changes.back().isOptional = isOptional;
  changes.push_back(inGSettings(key, setting, Kind::removeAndTouch, {accelerator}));
  changes.back().isOptional = isOptional;
}

bool isVolumeLevel(MediaKey key) {
  return key == MediaKey::volumeUp || key == MediaKey::volumeDown;
}

Changes emptied(const std::string& schema, const KnownDesktop::Keys& keys) {
  Changes changes;
  for (const auto& key : among(keys))
    changes.push_back(inGSettings(key, schema + ' ' + key.setting, Kind::remove, {key.symbol}));
  return changes;
}

}  // namespace

std::vector<SettingChange> gnomeChanges(const KnownDesktop::Keys& keys,
                                        const std::string& program) {
  Changes changes;
  const auto commands = shortcuts(keys);
  if (commands.empty()) return changes;
  for (const auto& shortcut : commands) appendShortcut(changes, shortcut, program);
  for (const auto& key : among(keys)) {
    appendRelease(changes, key, key.setting, key.symbol, false);
    // Younger than the others.
    if (isVolumeLevel(key.key))
      appendRelease(changes, key, std::string(key.setting) + "-precise",
                    std::string("<Shift>") + key.symbol, true);
  }
  // Last, because a key that the daemon still has cannot become a custom shortcut's.
  SettingChange list{.store = "gsettings",
                     .setting = std::string(gnomeSchema) + " custom-keybindings",
                     .kind = Kind::add,
                     .texts = {},
                     .keys = keys};
  for (const auto& shortcut : commands) list.texts.push_back(shortcut.path());
  changes.push_back(std::move(list));
  return changes;
}

// Plain and with Shift, as Qt numbers them. The actions with a name that ends in "small" are newer
// than Plasma 5.27.
std::vector<SettingChange> plasmaChanges(const KnownDesktop::Keys& keys, const std::string&) {
  struct Row {
    MediaKey key;
    int qtKey;
    const char* action;
    bool isOptional;
  };
  constexpr Row rows[]{
      {MediaKey::volumeUp, 0x01000072, "kmix/increase_volume", false},
      {MediaKey::volumeUp, 0x01000072, "kmix/increase_volume_small", true},
      {MediaKey::volumeDown, 0x01000070, "kmix/decrease_volume", false},
      {MediaKey::volumeDown, 0x01000070, "kmix/decrease_volume_small", true},
      {MediaKey::mute, 0x01000071, "kmix/mute", false},
      {MediaKey::brightnessUp, 0x010000b2, "org_kde_powerdevil/Increase Screen Brightness", true},
      {MediaKey::brightnessUp, 0x010000b2, "org_kde_powerdevil/Increase Screen Brightness Small",
       true},
      {MediaKey::brightnessDown, 0x010000b3, "org_kde_powerdevil/Decrease Screen Brightness", true},
      {MediaKey::brightnessDown, 0x010000b3, "org_kde_powerdevil/Decrease Screen Brightness Small",
       true}};
  constexpr int shift = 0x02000000;
  Changes changes;
  for (const auto& row : rows)
    if (keys.contains(row.key))
      changes.push_back({.store = "kglobalaccel",
                         .setting = row.action,
                         .kind = Kind::remove,
                         .texts = {std::to_string(row.qtKey), std::to_string(row.qtKey + shift)},
                         .keys = {row.key},
                         .isOptional = row.isOptional});
  return changes;
}

std::vector<SettingChange> xfceChanges(const KnownDesktop::Keys& keys, const std::string&) {
  Changes changes;
  for (const auto* const name : {"enable-keyboard-shortcuts", "show-notifications"})
    if (!keys.empty())
      changes.push_back({.store = "xfconf",
                         .setting = std::string("xfce4-panel /plugins/<pulseaudio>/") + name,
                         .kind = Kind::switchOff,
                         .texts = {},
                         .keys = keys});
  return changes;
}

std::vector<SettingChange> mateChanges(const KnownDesktop::Keys& keys, const std::string&) {
  return emptied("org.mate.SettingsDaemon.plugins.media-keys", keys);
}

std::vector<SettingChange> cinnamonChanges(const KnownDesktop::Keys& keys, const std::string&) {
  return emptied("org.cinnamon.desktop.keybindings.media-keys", keys);
}

}  // namespace valdrix::desktop
