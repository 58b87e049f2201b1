"""Pointers and keyboards: how a person's hand gets at each desktop."""

import os
import subprocess
import time

from waiting import Unmeasured

LEFT_BUTTON = 272
# The kernel's codes; wtype and X servers want names.
CODES = {"volume-up": 115, "volume-down": 114, "mute": 113, "brightness-up": 225, "brightness-down": 224,
         "a": 30, "shift": 42}
KEYSYMS = {"volume-up": "XF86AudioRaiseVolume", "volume-down": "XF86AudioLowerVolume", "mute": "XF86AudioMute",
           "brightness-up": "XF86MonBrightnessUp", "brightness-down": "XF86MonBrightnessDown", "a": "a"}


class Input:
    """Subclasses know how to jump, and how to hold and let go of buttons and keys."""

    def __init__(self, size):
        self.size = size
        self.at = None

    def move(self, x, y):
        self.jump(x, y)
        self.at = (x, y)

    def glide(self, x, y, steps=24):
        """In small steps, as a hand does."""
        left, top = self.at or (self.size[0] // 2, self.size[1] * 2 // 3)
        for step in range(1, steps + 1):
            self.move(left + (x - left) * step // steps, top + (y - top) * step // steps)
            time.sleep(0.008)

    def click(self):
        self.button(True)
        time.sleep(0.02)
        self.button(False)

    def press(self, key):
        self.key(key, True)
        time.sleep(0.04)
        self.key(key, False)

    def close(self):
        pass


class X11Input(Input):
    """XTEST, which a server cannot tell from devices."""

    def __init__(self, size):
        from Xlib import X, display
        from Xlib.ext import xtest
        super().__init__(size)
        self.X, self.server, self.fake = X, display.Display(), xtest.fake_input

    def jump(self, x, y):
        self.fake(self.server, self.X.MotionNotify, 0, self.X.CurrentTime, self.X.NONE, x, y)
        self.server.sync()

    def button(self, pressed):
        self.fake(self.server, self.X.ButtonPress if pressed else self.X.ButtonRelease, 1)
        self.server.sync()

    def key(self, key, pressed):
        from x11 import keycode
        self.fake(self.server, self.X.KeyPress if pressed else self.X.KeyRelease, keycode(self.server, KEYSYMS[key]))
        self.server.sync()


class GnomeInput(Input):
    """Mutter's remote desktop, whose pointer moves by differences."""

    def __init__(self, size):
        import dbus
        super().__init__(size)
        name, self.bus = "org.gnome.Mutter.RemoteDesktop", dbus.SessionBus()
        manager = dbus.Interface(self.bus.get_object(name, "/org/gnome/Mutter/RemoteDesktop"), name)
        self.session = dbus.Interface(self.bus.get_object(name, manager.CreateSession()), name + ".Session")
        self.session.Start()
        # To the corner at the bottom right, where nothing happens.
        self.session.NotifyPointerMotionRelative(20000.0, 20000.0)
        self.at = (size[0] - 1, size[1] - 1)
        # The seat has a keyboard from the first key on.
        self.press("shift")

    def jump(self, x, y):
        self.session.NotifyPointerMotionRelative(float(x - self.at[0]), float(y - self.at[1]))

    def button(self, pressed):
        self.session.NotifyPointerButton(LEFT_BUTTON, pressed)

    def key(self, key, pressed):
        self.session.NotifyKeyboardKeycode(CODES[key], pressed)


class WaylandInput(Input):
    """The compositor's interface for virtual devices, by a program that knows it."""

    def __init__(self, size):
        super().__init__(size)
        self.program = subprocess.Popen([os.environ["HELPERS"] + "/wayland-input", *map(str, size)], text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def tell(self, *words):
        try:
            print(*words, file=self.program.stdin, flush=True)
        except BrokenPipeError:
            raise Unmeasured("the compositor gives programs no pointer") from None
        if self.program.stdout.readline() != "ok\n":
            raise Unmeasured("the compositor does not take the input")

    def close(self):
        self.program.stdin.close()
        self.program.wait(5)

    def jump(self, x, y):
        self.tell("move", x, y)

    def button(self, pressed):
        self.tell("button", LEFT_BUTTON, int(pressed))

    def key(self, key, pressed):
        self.tell("key", CODES[key], int(pressed))


class SwayInput(WaylandInput):
    """Its keys are wtype's."""

    def __init__(self, size):
        super().__init__(size)
        # Keeps a keyboard at the seat: one that comes and goes would take the focus along.
        self.keyboard = subprocess.Popen(["wtype", "-s", "3600000"])

    def close(self):
        self.keyboard.terminate()
        self.keyboard.wait(5)
        super().close()

    def press(self, key):
        subprocess.run(["wtype", "-k", KEYSYMS[key]], check=True, timeout=10)


KINDS = {"x11": X11Input, "gnome": GnomeInput, "wayland": WaylandInput, "sway": SwayInput}
