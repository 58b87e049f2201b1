"""How the user of each desktop makes it dark, and whether the settings window then is."""

import os
import pathlib
import subprocess

import pictures
from waiting import Unmeasured, holds

GNOME = [["gsettings", "set", "org.gnome.desktop.interface", "color-scheme", "prefer-dark"],
         ["gsettings", "set", "org.gnome.desktop.interface", "gtk-theme", "Adwaita-dark"]]
PLASMA = [["plasma-apply-colorscheme", "BreezeDark"]]
COMMANDS = {
    "gnome": GNOME, "gnome-x11": GNOME, "plasma": PLASMA, "plasma-x11": PLASMA,
    "xfce": [["xfconf-query", "-c", "xsettings", "-p", "/Net/ThemeName", "-s", "Adwaita-dark"]],
    "mate": [["gsettings", "set", "org.mate.interface", "gtk-theme", "Adwaita-dark"]],
    "cinnamon": [["gsettings", "set", "org.cinnamon.desktop.interface", "gtk-theme", "Adwaita-dark"],
                 ["gsettings", "set", "org.gnome.desktop.interface", "color-scheme", "prefer-dark"]],
}
DARK = 110  # of 255: the middle of the window's pixels


def make_dark(desktop):
    """A window manager alone has no such setting: GTK's and the one that portals read stand in."""
    if desktop not in COMMANDS:
        for version in ("gtk-3.0", "gtk-4.0"):
            folder = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / version
            folder.mkdir(parents=True, exist_ok=True)
            (folder / "settings.ini").write_text("[Settings]\ngtk-application-prefer-dark-theme=1\n")
    for command in COMMANDS.get(desktop, GNOME):
        done = subprocess.run(command, capture_output=True, text=True, timeout=20)
        if done.returncode:
            raise Unmeasured(f"the desktop could not be made dark: {done.stderr.strip()}")


def still_picture(lab, name):
    """The screen once nothing changes any more: a desktop takes its time to become dark."""
    pictures_taken = [lab.look(name)]

    def same():
        pictures_taken.append(lab.look(name))
        return pictures_taken[-1].tobytes() == pictures_taken[-2].tobytes()

    holds(same, 6, 0.5)
    return pictures_taken[-1]


def settings_are_dark(lab, picture):
    """Opens the settings and looks at what has come up on the screen."""
    before = still_picture(lab, f"{picture}-before")
    lab.agent.command("settings", "general")

    def window():
        after = lab.look(picture)
        area = pictures.changed_area(before, after)
        if area and area[2] - area[0] > 250 and area[3] - area[1] > 200:
            return after, area
        return None

    found = holds(window, 12, 0.3)
    if not found:
        raise Unmeasured("no settings window came up")
    # It may still be on its way: twice the same brightness is its own.
    last = [None]

    def steady():
        after, area = window() or found
        value = pictures.median_brightness(after, area)
        same = value == last[0]
        last[0] = value
        return same

    holds(steady, 6, 0.3)
    return last[0] < DARK, last[0]


def measure(lab):
    """The cell of the table."""
    make_dark(lab.desktop)
    is_dark, brightness = settings_are_dark(lab, "settings")
    if is_dark:
        return f"yes ({brightness})"
    lab.agent.end()
    lab.agent.start()
    lab.agent.rests()
    again, _ = settings_are_dark(lab, "settings-restarted")
    return "only after a new start" if again else f"no ({brightness})"
