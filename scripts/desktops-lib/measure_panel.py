"""The panel above the bare desktop, and what it costs there."""

import pictures
from lab import refusal
from waiting import holds
from witnesses import tray_items
from x11 import docked

REST_SECONDS = 20  # what a shorter rest is reckoned up to


class PanelMeasurement:
    def __init__(self, lab):
        self.lab = lab

    def fill(self):
        cells = {"wake-ups": self.rest, "memory": self.memory, "tray": self.tray, "hover": self.hover}
        for cell, measure in cells.items():
            self.lab.fill(cell, measure)

    def rest(self):
        self.lab.move_away()
        self.lab.agent.rests()
        before = self.lab.agent.wakeups()
        holds(self.lab.agent.has_ended, self.lab.rest_seconds, 1)
        woken = {thread: count - before.get(thread, 0) for thread, count in self.lab.agent.wakeups().items()}
        print("woken:", {thread: count for thread, count in woken.items() if count}, flush=True)
        return str(sum(woken.values()) * REST_SECONDS // self.lab.rest_seconds)

    def memory(self):
        return "{:.1f} / {:.1f} / {:.1f}".format(*self.lab.agent.memory())

    def hover(self):
        self.lab.input.glide(self.lab.middle(), 0)
        if not self.lab.agent.presents("expanded"):
            self.lab.take_picture("not-expanded")
            self.lab.cells["calendar"] = refusal("the panel did not expand")
            self.lab.move_away()
            return "does not expand"
        self.lab.agent.rests()
        self.lab.fill("calendar", self.calendar)
        self.lab.move_away()
        return "yes" if self.lab.agent.presents("collapsed") else "expands, does not collapse"

    def calendar(self):
        listed = len(self.lab.agent.status()["calendar"]["events"])
        width, height = self.lab.pixels(self.lab.agent.status()["notch"]["expandedSize"])
        area = (self.lab.middle() - width // 2, 0, self.lab.middle() + width // 2, height)
        seen = pictures.calendar_marks(self.lab.look("expanded"), area)
        return f"{seen} of 5 seen" + ("" if seen == listed else f", {listed} said")

    def tray(self):
        hosted, owners = tray_items()
        if any(owners):
            return "status notifier" if hosted else "registered, nobody shows it"
        if self.lab.is_x11 and docked("valdrix"):
            return "X11 tray"
        return "none" if hosted else "none, no bar for it"
