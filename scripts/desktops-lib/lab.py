"""One desktop with the agent on it, and the row that is measured there."""

import json
import pathlib
import traceback

from PIL import Image

import inputs
import pictures
from agent import Agent
from waiting import Unmeasured
from witnesses import BusMonitor


def refusal(reason):
    """The cell of what could not be measured."""
    return {"why": str(reason)}


class Lab:
    """One desktop with the agent on it."""

    def __init__(self, options):
        self.desktop, self.session, self.out = options.desktop, options.session, pathlib.Path(options.out)
        self.size = tuple(int(part) for part in options.size.split("x"))
        self.rest_seconds = 5 if options.quick else 20
        self.is_x11 = options.input == "x11"
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
            return refusal(reason)
        except Exception as error:  # a desktop may break in any way, and the others are still to be measured
            traceback.print_exc()
            return refusal(f"{type(error).__name__}: {error}")

    def fill(self, cell, measure):
        if self.agent.process and self.agent.has_ended():
            self.cells[cell] = refusal(f"the agent had ended with {self.agent.process.returncode}")
        else:
            self.cells[cell] = self.attempt(measure)
        print(cell, self.cells[cell], flush=True)
        self.write()

    def write(self):
        (self.out / "row.json").write_text(json.dumps(self.cells, ensure_ascii=False, indent=1))

    def start(self):
        """Whether the agent runs; the row says so where it does not."""
        try:
            self.agent.start()
        except Unmeasured as reason:
            self.cells["failed"] = str(reason)
        else:
            self.cells["status"] = {key: self.agent.status().get(key) for key in ("version", "mediaKeys", "backends")}
        self.write()
        return "failed" not in self.cells

    def move_away(self):
        self.input.glide(self.size[0] // 2 + 60, self.size[1] * 3 // 4)

    def middle(self):
        return self.size[0] // 2

    def screen(self):
        return next(screen for screen in self.agent.status()["screens"] if screen["hasPanel"])

    def pixels(self, size):
        """What the agent says in points."""
        scale = self.screen()["scale"]
        return round(size["width"] * scale), round(size["height"] * scale)
