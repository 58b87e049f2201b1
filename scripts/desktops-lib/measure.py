#!/usr/bin/python3
"""Drives the agent on the desktop that the environment names, and writes down what is seen.

measure.py DESKTOP --program VALDRIX --input KIND --picture KIND --session DIR --out DIR --size WxH [--quick]
Writes OUT/row.json, anew after each measurement: what was measured before a desktop went stays.
"""

import argparse
import json
import pathlib
import signal
import sys
import traceback

from PIL import Image

import dark
import inputs
import pictures
from agent import Agent
from measure_keys import KEYS, KeyMeasurement
from waiting import Unmeasured, holds
from windows import Window
from witnesses import BusMonitor, tray_items

REST_SECONDS = 20


class Lab:
    """One desktop with the agent on it."""

    def __init__(self, options):
        self.desktop, self.session, self.out = options.desktop, options.session, pathlib.Path(options.out)
        self.size = tuple(int(part) for part in options.size.split("x"))
        self.rest_seconds = 5 if options.quick else REST_SECONDS
        self.is_x11 = options.input == "x11"
        self.has_x_windows = self.is_x11
        self.take = pictures.KINDS[options.picture]
        self.cells = {}
        self.agent = Agent(options.program, self.out / "agent.log")
        self.input = inputs.KINDS[options.input](self.size)
        self.monitor = BusMonitor(self.out / "bus.log")

    def close(self):
        self.agent.end()
        self.monitor.end()
        self.input.close()

    def take_picture(self, name):
        path = str(self.out / f"{name}.png")
        self.take(path)
        return path

    def look(self, name):
        return Image.open(self.take_picture(name)).convert("RGB")

    def attempt(self, measure):
        """The measurement's cell, or a dash and the reason."""
        try:
            return measure()
        except Unmeasured as reason:
            return {"why": str(reason)}
        except Exception as error:  # a desktop may break in any way, and the others are still to be measured
            traceback.print_exc()
            return {"why": f"{type(error).__name__}: {error}"}

    def fill(self, cell, measure):
        if self.agent.process and self.agent.has_ended():
            self.cells[cell] = {"why": f"the agent had ended with {self.agent.process.returncode}"}
        else:
            self.cells[cell] = self.attempt(measure)
        print(cell, self.cells[cell], flush=True)
        (self.out / "row.json").write_text(json.dumps(self.cells, ensure_ascii=False, indent=1))

    def move_away(self):
        self.input.glide(self.size[0] // 2 + 60, self.size[1] * 3 // 4)

    def middle(self):
        return self.size[0] // 2

    def measure_rest(self):
        self.move_away()
        self.agent.rests()
        before = self.agent.wakeups()
        holds(self.agent.has_ended, self.rest_seconds, 1)
        woken = {thread: count - before.get(thread, 0) for thread, count in self.agent.wakeups().items()}
        print("woken:", {thread: count for thread, count in woken.items() if count}, flush=True)
        return str(sum(woken.values()) * REST_SECONDS // self.rest_seconds)

    def measure_memory(self):
        return "{:.1f} / {:.1f} / {:.1f}".format(*self.agent.memory())

    def measure_hover(self):
        self.input.glide(self.middle(), 0)
        expands = self.agent.presents("expanded")
        if not expands:
            self.take_picture("not-expanded")
            self.cells["calendar"] = {"why": "the panel did not expand"}
            self.move_away()
            return "does not expand"
        self.agent.rests()
        self.fill("calendar", self.measure_calendar)
        self.move_away()
        return "yes" if self.agent.presents("collapsed") else "expands, does not collapse"

    def measure_calendar(self):
        listed = len(self.agent.status()["calendar"]["events"])
        width, height = self.pixels(self.agent.status()["notch"]["expandedSize"])
        area = (self.middle() - width // 2, 0, self.middle() + width // 2, height)
        seen = pictures.calendar_marks(self.look("expanded"), area)
        return f"{seen} of 5 seen" + ("" if seen == listed else f", {listed} said")

    def screen(self):
        return next(screen for screen in self.agent.status()["screens"] if screen["hasPanel"])

    def pixels(self, size):
        """What the agent says in points."""
        scale = self.screen()["scale"]
        return round(size["width"] * scale), round(size["height"] * scale)

    def measure_before_window(self):
        """With nothing but a window that fills the screen below, which tells of clicks and keys."""
        self.agent.presents("collapsed")
        self.agent.rests()
        window = Window("x11" if self.is_x11 else "wayland", self.size)
        try:
            self.fill("fullscreen", self.measure_fullscreen)
            self.fill("place", self.measure_place)
            self.fill("click-through", lambda: self.measure_clicks(window))
            self.fill("focus", lambda: self.measure_focus(window))
        finally:
            window.close()

    def measure_fullscreen(self):
        if not holds(lambda: shows_window(self.look("fullscreen")), 10, 0.3):
            raise Unmeasured("the fullscreen window cannot be seen")
        # The panel may need a moment to come back to the front.
        return "above" if holds(lambda: pictures.panel(self.look("fullscreen")), 3, 0.3) else "below"

    def measure_place(self):
        seen = pictures.panel(self.look("place"))
        if not seen:
            raise Unmeasured("no panel stands out from the window below")
        left, right, height = seen
        off = (left + right) / 2 - self.size[0] / 2
        text = f"{right - left} × {height} px"
        return f"centred, {text}" if abs(off) <= 1 else f"{off:+.0f} px off the centre, {text}"

    def measure_clicks(self, window):
        points = list(self.points_outside())
        arrived, missed = 0, []
        for x, y in points:
            if self.click_arrives(window, x, y):
                arrived += 1
            else:
                missed.append((x, y))
        if missed:
            print("no click at", missed, flush=True)
        self.move_away()
        return f"{arrived} of {len(points)}"

    def points_outside(self):
        """A grid from edge to edge, and points close to the panel's, without what the panel covers."""
        notch_width, notch_height = self.pixels(self.screen()["notchSize"])
        half, height = notch_width // 2 + 2, notch_height + 2
        middle, (width, tall) = self.middle(), self.size
        grid = [(x, y) for y in (1, 16, 60, tall // 4, tall // 2, tall - 120)
                for x in (24, 180, 330, middle - 120, middle, middle + 121, 950, 1100, width - 24)]
        near = [(middle - half - 2, 2), (middle + half + 2, 2), (middle - half - 2, height - 8),
                (middle + half + 2, height - 8), (middle - 40, height + 3), (middle + 40, height + 3)]
        for x, y in grid + near:
            if abs(x - middle) > half or y > height:
                yield x, y

    def click_arrives(self, window, x, y):
        self.input.move(x, y)
        before = len(window.lines)
        self.input.click()

        def arrived():
            for line in window.lines[before:]:
                if line.startswith("click"):
                    at = [int(part) for part in line.split()[1:]]
                    return abs(at[0] - x) <= 2 and abs(at[1] - y) <= 2
            return False

        return bool(holds(arrived, 1, 0.01))

    def measure_focus(self, window):
        if not self.types_into(window):
            raise Unmeasured("the window below had not the keyboard before the click")
        clicks, losses = window.count("click"), window.count("focus out")
        self.input.glide(self.middle(), 4)
        self.agent.presents("expanded")
        self.input.click()
        kept = self.types_into(window) and window.count("focus out") == losses
        self.move_away()
        self.agent.presents("collapsed")
        text = "kept" if kept else "lost"
        return text + ("; the click fell through" if window.count("click") > clicks else "")

    def types_into(self, window):
        before = window.count("key")
        self.input.press("a")
        return bool(holds(lambda: window.count("key") > before, 2)) and window.has_focus()

    def measure_tray(self):
        from x11 import docked
        hosted, owners = tray_items()
        if any(owners):
            return "status notifier" if hosted else "registered, nobody shows it"
        if self.is_x11 and docked("valdrix"):
            return "X11 tray"
        return "none" if hosted else "none, no bar for it"

    def measure_dark(self):
        dark.make_dark(self.desktop)
        is_dark, brightness = dark.settings_are_dark(self, "settings")
        if is_dark:
            return f"yes ({brightness})"
        self.agent.end()
        self.agent.start()
        self.agent.rests()
        again, _ = dark.settings_are_dark(self, "settings-restarted")
        return "only after a new start" if again else f"no ({brightness})"

    def measure_entrusted_keys(self):
        """The second pass: the keys after `valdrix keys entrust`, and whether they are given back."""
        if self.agent.refuses_custody():
            return None
        done = self.agent.command("keys", "entrust")
        print("entrust:", done.returncode, done.stdout, done.stderr, flush=True)
        if done.returncode:
            return None
        keys = KeyMeasurement(self)
        holds(lambda: all(self.agent.word_on(key)["state"] == "held" for key in KEYS), 5)
        cells = keys.all("entrusted")
        print("restore:", self.agent.command("keys", "restore").stdout, flush=True)
        holds(lambda: self.agent.word_on("volume-up")["state"] != "held", 5)
        cells["restored"] = self.attempt(lambda: keys.one("volume-up", "restored"))
        return cells

    def measure_all(self):
        self.agent.start()
        self.cells["status"] = {key: self.agent.status().get(key) for key in ("version", "mediaKeys", "backends")}
        self.fill("wake-ups", self.measure_rest)
        self.fill("memory", self.measure_memory)
        self.fill("tray", self.measure_tray)
        self.fill("hover", self.measure_hover)
        self.fill("window", self.measure_before_window)
        self.fill("keys", lambda: KeyMeasurement(self).all("key"))
        self.fill("entrusted", self.measure_entrusted_keys)
        self.fill("dark", self.measure_dark)


def shows_window(image):
    """The neighbour's colour, where nothing else is."""
    return max(abs(a - b) for a, b in zip(image.getpixel((40, 40)), (0x33, 0x66, 0xAA))) <= 8


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("desktop")
    for name in ("program", "input", "picture", "session", "out", "size"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--quick", action="store_true")
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    lab = Lab(parser.parse_args())
    try:
        lab.measure_all()
    finally:
        lab.close()


main()
