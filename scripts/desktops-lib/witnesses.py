"""Who did something: the sound server, the login manager, the bus and the X server are asked, never the agent."""

import os
import re
import subprocess

import x11
from agent import is_agent

# Calls and signals by which desktops have their own indicators shown.
SHOWN = {"ShowOSD", "Notify", "osdProgress", "osdText", "showText", "volumeChanged", "mediaPlayerVolumeChanged"}
# And those by which whoever has the keys tells who owns them of a press.
TAKEN = {"AcceleratorActivated", "globalShortcutPressed"}


class Log:
    """What is written behind a file's present end."""

    def __init__(self, path):
        self.path, self.start = path, os.path.getsize(path) if os.path.exists(path) else 0

    def text(self):
        if not os.path.exists(self.path):
            return ""
        with open(self.path, errors="replace") as file:
            file.seek(self.start)
            return file.read()


class BusMonitor:
    """The calls and signals of the session bus that concern keys and indicators, as they happen."""

    def __init__(self, path):
        self.path = path
        rules = [f"member='{name}'" for name in sorted(SHOWN | TAKEN)]
        with open(path, "wb") as output:
            self.process = subprocess.Popen(["dbus-monitor", "--session", *rules], stdout=output)

    def end(self):
        self.process.terminate()
        self.process.wait(5)


def messages(text):
    """What dbus-monitor wrote, a message an entry, but for the agent's own notices and shortcuts."""
    return [entry for entry in re.split(r"^(?=method call|signal)", text, flags=re.M) if '"valdrix' not in entry]


def brightness():
    with open(os.environ["VALDRIX_SYSFS"] + "/class/backlight/panel_backlight/brightness") as file:
        return file.read()


class Press:
    """Marks the moment before a key is pressed, and tells afterwards what came of it."""

    def __init__(self, session, monitor, has_x_windows):
        self.sound = Log(f"{session}/sound.log")
        self.asked_for_brightness = Log(f"{session}/brightness.log")
        self.brightness = brightness()
        self.bus = Log(monitor.path)
        self.has_x_windows = has_x_windows
        self.popups = x11.popups() if has_x_windows else set()
        self.saw_popup = False

    def actors(self):
        programs = re.findall(r"Client (\S+) changes (?:volume|mute) of sink ", self.sound.text())
        asked = [line.split()[0] for line in self.asked_for_brightness.text().splitlines()]
        # Only the agent knows of the tree, and writes it by itself where it may.
        programs += asked or ["valdrix"] * (brightness() != self.brightness)
        return {"valdrix" if "valdrix" in program else "desktop" for program in programs}

    def look(self):
        """For windows that come and go."""
        if self.has_x_windows and x11.popups() - self.popups:
            self.saw_popup = True

    def members(self):
        return {re.search(r"member=(\w+)", entry)[1] for entry in messages(self.bus.text()) if "member=" in entry}

    def desktop_took_it(self):
        return bool(self.members() & TAKEN)

    def desktop_showed(self):
        return self.saw_popup or bool(self.members() & SHOWN)


def tray_items():
    """The processes behind the items that the desktop's bar shows, and whether there is such a bar."""
    import dbus
    bus = dbus.SessionBus()
    name = "org.kde.StatusNotifierWatcher"
    if not bus.name_has_owner(name):
        return False, []
    properties = dbus.Interface(bus.get_object(name, "/StatusNotifierWatcher"), "org.freedesktop.DBus.Properties")
    items = [str(item).split("/")[0] for item in properties.Get(name, "RegisteredStatusNotifierItems")]
    owners = [bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                "GetConnectionUnixProcessID", "s", (item,))
              for item in items if bus.name_has_owner(item)]
    return bool(properties.Get(name, "IsStatusNotifierHostRegistered")), [is_agent(owner) for owner in owners]
