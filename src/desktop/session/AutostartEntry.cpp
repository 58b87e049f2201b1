#include "desktop/session/AutostartEntry.h"

#include <algorithm>
#include <array>

#include "desktop/session/DesktopEntry.h"

namespace valdrix::desktop {

namespace {

constexpr std::string_view hidden = "Hidden";
constexpr std::string_view onlyShowIn = "OnlyShowIn";
constexpr std::string_view notShowIn = "NotShowIn";
/// What session managers of several desktops write when the user switches an entry off.
constexpr std::array<std::string_view, 2> enabledKeys{"X-GNOME-Autostart-enabled",
                                                      "X-MATE-Autostart-enabled"};

IniDocument parse(std::string_view text) { return IniDocument(text, "Desktop Entry"); }

}  // namespace

AutostartEntry::AutostartEntry(std::string_view text) : document_(parse(text)) {}

AutostartEntry AutostartEntry::starting(const QString& program) {
  AutostartEntry entry({});
  entry.set("Type", "Application");
  entry.set("Name", "valdrix");
  entry.set("Icon", "valdrix");
  entry.set("Exec", DesktopEntry::execOf(program));
  return entry;
}

bool AutostartEntry::isOwn() const {
  auto own = starting({});
  own.set("Exec", value("Exec"));
  if (document_.values().contains(hidden)) own.set(hidden, value(hidden));
  return own.text() == text();
}

bool AutostartEntry::isUsable() const {
  const auto tryExec = value("TryExec");
  return value("Type") == "Application" &&
         DesktopEntry::isInstalled(DesktopEntry::programOf(value("Exec"))) &&
         (tryExec.isEmpty() || DesktopEntry::isInstalled(tryExec));
}

bool AutostartEntry::isHeldBack(const QStringList& desktops) const {
  const bool isDisabled = std::ranges::any_of(
      enabledKeys, [this](std::string_view key) { return value(key) == "false"; });
  return value(hidden) == "true" || isDisabled || !isShownIn(desktops);
}

// The first desktop that either list names decides.
bool AutostartEntry::isShownIn(const QStringList& desktops) const {
  const auto only = list(onlyShowIn);
  const auto never = list(notShowIn);
  for (const auto& desktop : desktops) {
    if (only.contains(desktop)) return true;
    if (never.contains(desktop)) return false;
  }
  return only.isEmpty();
}

void AutostartEntry::holdBack() { set(hidden, "true"); }

void AutostartEntry::release(const QStringList& desktops) {
  if (value(hidden) == "true") set(hidden, "false");
  for (const auto key : enabledKeys)
    if (value(key) == "false") set(key, "true");
  if (isShownIn(desktops)) return;
  auto never = list(notShowIn);
  const auto isRunning = [&](const QString& desktop) { return desktops.contains(desktop); };
  if (never.removeIf(isRunning) > 0) set(notShowIn, never.join(';'));
  if (!isShownIn(desktops)) set(onlyShowIn, (list(onlyShowIn) + desktops.mid(0, 1)).join(';'));
}

void AutostartEntry::setProgram(const QString& program) {
  set("Type", "Application");
  set("Exec", DesktopEntry::execOf(program));
  if (!value("TryExec").isEmpty()) set("TryExec", program);
}

QString AutostartEntry::value(std::string_view key) const {
  const auto found = document_.values().find(key);
  return found == document_.values().end() ? QString() : QString::fromStdString(found->second);
}

QStringList AutostartEntry::list(std::string_view key) const {
  return value(key).split(';', Qt::SkipEmptyParts);
}

void AutostartEntry::set(std::string_view key, const QString& value) {
  document_.set(key, value.toStdString());
}

}  // namespace valdrix::desktop
