#!/usr/bin/python3
"""What desktops ask of a login manager, on the private system bus.

login_manager.py SYSFS LOG: sets the brightness of the tree SYSFS and writes down in LOG who asked.
"""

import os
import pathlib
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

LOGIN = "org.freedesktop.login1"
PROPERTIES = "org.freedesktop.DBus.Properties"
ROOT = "/org/freedesktop/login1"
SESSION, SEAT, USER = ROOT + "/session/c1", ROOT + "/seat/seat0", ROOT + "/user/self"
HERE = dbus.UInt32(os.getuid())


def link(name, path):
    return dbus.Struct((name, dbus.ObjectPath(path)))


class Node(dbus.service.Object):
    """An object whose properties never change."""

    def __init__(self, bus, path, values):
        super().__init__(bus, path)
        self.values = dbus.Dictionary(values, signature="sv")

    @dbus.service.method(PROPERTIES, "ss", "v")
    def Get(self, _interface, name):
        return self.values[name]

    @dbus.service.method(PROPERTIES, "s", "a{sv}")
    def GetAll(self, _interface):
        return self.values


class Session(Node):
    sysfs, log = None, None

    @dbus.service.method(LOGIN + ".Session", "ssu", "", sender_keyword="sender", connection_keyword="bus")
    def SetBrightness(self, subsystem, name, value, sender=None, bus=None):
        process = bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "GetConnectionUnixProcessID", "s", (sender,))
        program = pathlib.Path(f"/proc/{process}/comm").read_text().strip()
        (self.sysfs / "class" / subsystem / name / "brightness").write_text(f"{value}\n")
        with self.log.open("a") as log:
            log.write(f"{program} {value}\n")

    @dbus.service.method(LOGIN + ".Session", "b", "")
    def TakeControl(self, _force):
        pass

    @dbus.service.method(LOGIN + ".Session", "", "")
    def ReleaseControl(self):
        pass

    @dbus.service.method(LOGIN + ".Session", "", "")
    def Activate(self):
        pass

    @dbus.service.method(LOGIN + ".Session", "b", "")
    def SetIdleHint(self, _idle):
        pass

    @dbus.service.method(LOGIN + ".Session", "b", "")
    def SetLockedHint(self, _locked):
        pass

    @dbus.service.method(LOGIN + ".Session", "s", "")
    def SetType(self, _kind):
        pass


class Manager(Node):
    @dbus.service.method(LOGIN + ".Manager", "s", "o")
    def GetSession(self, _name):
        return SESSION

    @dbus.service.method(LOGIN + ".Manager", "u", "o")
    def GetSessionByPID(self, _process):
        return SESSION

    @dbus.service.method(LOGIN + ".Manager", "u", "o")
    def GetUser(self, _user):
        return USER

    @dbus.service.method(LOGIN + ".Manager", "u", "o")
    def GetUserByPID(self, _process):
        return USER

    @dbus.service.method(LOGIN + ".Manager", "s", "o")
    def GetSeat(self, _name):
        return SEAT

    @dbus.service.method(LOGIN + ".Manager", "", "a(susso)")
    def ListSessions(self):
        return [("c1", HERE, "user", "seat0", dbus.ObjectPath(SESSION))]

    @dbus.service.method(LOGIN + ".Manager", "", "a(ssssuu)")
    def ListInhibitors(self):
        return []

    @dbus.service.method(LOGIN + ".Manager", "ssss", "h")
    def Inhibit(self, _what, _who, _why, _mode):
        return dbus.types.UnixFd(os.pipe()[1])


def question(name):
    """Whether the machine can be switched off and the like: it cannot."""
    def answer(_self):
        return "na"
    answer.__name__ = name
    return dbus.service.method(LOGIN + ".Manager", "", "s")(answer)


QUESTIONS = ("CanPowerOff", "CanReboot", "CanHalt", "CanSuspend", "CanHibernate", "CanHybridSleep",
             "CanSuspendThenHibernate", "CanRebootToFirmwareSetup")
AnsweringManager = type("AnsweringManager", (Manager,), {name: question(name) for name in QUESTIONS})

SESSION_VALUES = {
    "Id": "c1", "User": dbus.Struct((HERE, dbus.ObjectPath(USER))), "Name": "user", "Active": True,
    "State": "active", "Class": "user", "Seat": link("seat0", SEAT), "VTNr": dbus.UInt32(1), "Remote": False,
    "LockedHint": False, "IdleHint": False, "Display": "", "TTY": "tty1", "Desktop": "",
    "Leader": dbus.UInt32(os.getpid()), "Type": os.environ.get("XDG_SESSION_TYPE", "x11"),
}
MANAGER_VALUES = {
    "IdleHint": False, "Docked": False, "LidClosed": False, "OnExternalPower": True, "BlockInhibited": "",
    "PreparingForSleep": False, "PreparingForShutdown": False, "NCurrentSessions": dbus.UInt64(1),
    "InhibitDelayMaxUSec": dbus.UInt64(5000000),
}
USER_VALUES = {"UID": HERE, "Name": "user", "State": "active", "Linger": False, "Display": link("c1", SESSION),
               "Sessions": dbus.Array([link("c1", SESSION)])}
SEAT_VALUES = {"Id": "seat0", "CanGraphical": True, "CanTTY": True, "CanMultiSession": True,
               "ActiveSession": link("c1", SESSION), "Sessions": dbus.Array([link("c1", SESSION)])}


def main():
    Session.sysfs, Session.log = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
    nodes = [AnsweringManager(bus, ROOT, MANAGER_VALUES), Node(bus, SEAT, SEAT_VALUES), Node(bus, USER, USER_VALUES)]
    nodes += [Node(bus, f"{ROOT}/user/_{HERE}", USER_VALUES)]
    nodes += [Session(bus, path, SESSION_VALUES) for path in (SESSION, ROOT + "/session/auto", ROOT + "/session/self")]
    name = dbus.service.BusName(LOGIN, bus)
    GLib.MainLoop().run()
    return name, nodes


main()
