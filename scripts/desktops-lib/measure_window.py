"""The panel above a window that fills the screen and tells of the clicks and keys that reach it."""

import pictures
from lab import refusal
from waiting import Unmeasured, holds, watch
from windows import Window


class WindowMeasurement:
    def __init__(self, lab):
        self.lab = lab
        self.window = None

    def fill(self):
        cells = {"fullscreen": self.fullscreen, "place": self.place, "click-through": self.clicks, "focus": self.focus}
        self.lab.agent.presents("collapsed")
        self.lab.agent.rests()
        try:
            self.window = Window("x11" if self.lab.is_x11 else "wayland", self.lab.size)
        except Unmeasured as reason:
            self.lab.cells.update(dict.fromkeys(cells, refusal(reason)))
            return
        try:
            for cell, measure in cells.items():
                self.lab.fill(cell, measure)
        finally:
            self.window.close()

    def fullscreen(self):
        if not holds(lambda: shows_window(self.lab.look("fullscreen")), 10, 0.3):
            raise Unmeasured("the fullscreen window cannot be seen")
        # The panel may need a moment to come back to the front.
        return "above" if holds(lambda: pictures.panel(self.lab.look("fullscreen")), 3, 0.3) else "below"

    def place(self):
        seen = pictures.panel(self.lab.look("place"))
        if not seen:
            raise Unmeasured("no panel stands out from the window below")
        left, right, height = seen
        off = (left + right) / 2 - self.lab.size[0] / 2
        text = f"{right - left} × {height} px"
        return f"centred, {text}" if abs(off) <= 1 else f"{off:+.0f} px off the centre, {text}"

    def clicks(self):
        points = list(self.points_outside())
        arrived, missed = 0, []
        for x, y in points:
            if self.click_arrives(x, y):
                arrived += 1
            else:
                missed.append((x, y))
        # A desktop's notification may lie over a point for some seconds.
        late = [point for point in missed if holds(lambda point=point: self.click_arrives(*point), 15, 1)]
        arrived += len(late)
        if missed:
            print("no click at", missed, "and later at", late, flush=True)
        self.lab.move_away()
        return f"{arrived} of {len(points)}"

    def points_outside(self):
        """A grid from edge to edge, and points close to the panel's, without what the panel covers."""
        notch_width, notch_height = self.lab.pixels(self.lab.screen()["notchSize"])
        half, height = notch_width // 2 + 2, notch_height + 2
        middle, (width, tall) = self.lab.middle(), self.lab.size
        grid = [(x, y) for y in (1, 16, 60, tall // 4, tall // 2, tall - 120)
                for x in (24, 180, 330, middle - 120, middle, middle + 121, 950, 1100, width - 24)]
        near = [(middle - half - 2, 2), (middle + half + 2, 2), (middle - half - 2, height - 8),
                (middle + half + 2, height - 8), (middle - 40, height + 3), (middle + 40, height + 3)]
        for x, y in grid + near:
            if abs(x - middle) > half or y > height:
                yield x, y

    def click_arrives(self, x, y):
        self.lab.input.move(x, y)
        before = len(self.window.lines)
        self.lab.input.click()

        def arrived():
            for line in self.window.lines[before:]:
                if line.startswith("click"):
                    at = [int(part) for part in line.split()[1:]]
                    return abs(at[0] - x) <= 2 and abs(at[1] - y) <= 2
            return False

        return bool(holds(arrived, 1, 0.01))

    def focus(self):
        if not self.types():
            raise Unmeasured("the window below had not the keyboard before the click")
        clicks, losses = self.window.count("click"), self.window.count("focus out")
        self.lab.input.glide(self.lab.middle(), 4)
        self.lab.agent.presents("expanded")
        self.lab.input.click()
        # Only then a key: with some virtual keyboards the focus goes and comes at each.
        watch(0.5, lambda: None)
        kept = self.window.count("focus out") == losses and self.types()
        self.lab.move_away()
        self.lab.agent.presents("collapsed")
        text = "kept" if kept else "lost"
        return text + ("; the click fell through" if self.window.count("click") > clicks else "")

    def types(self):
        before = self.window.count("key")
        self.lab.input.press("a")
        return bool(holds(lambda: self.window.count("key") > before, 2)) and self.window.has_focus()


def shows_window(image):
    """The neighbour's colour, where nothing else is."""
    return max(abs(a - b) for a, b in zip(image.getpixel((40, 40)), (0x33, 0x66, 0xAA))) <= 8
