"""A neighbour of the panel's: a window born fullscreen that says what reaches it."""

import os
import pathlib
import subprocess
import sys
import threading

from waiting import Unmeasured, holds

PROGRAMS = {"x11": ["/usr/bin/python3", str(pathlib.Path(__file__).with_name("x11_window.py"))],
            "wayland": [os.environ.get("HELPERS", "") + "/wayland-window"]}


class Window:
    def __init__(self, kind, size):
        self.lines = []
        self.program = subprocess.Popen(PROGRAMS[kind], text=True, stdout=subprocess.PIPE)
        threading.Thread(target=self.listen, daemon=True).start()
        full = "size %d %d" % size
        if not holds(lambda: full in self.lines and self.has_focus(), 10):
            said = list(self.lines)
            self.close()
            raise Unmeasured(f"the neighbour did not come up fullscreen with the focus: {said}")

    def listen(self):
        for line in self.program.stdout:
            print("window:", line, end="", file=sys.stderr)
            self.lines.append(line.strip())

    def has_focus(self):
        told = [line for line in list(self.lines) if line.startswith("focus")]
        return bool(told) and told[-1] == "focus in"

    def count(self, word):
        return sum(line.startswith(word) for line in list(self.lines))

    def close(self):
        self.program.terminate()
        self.program.wait(5)
