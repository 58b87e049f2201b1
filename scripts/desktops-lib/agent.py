"""The agent that is measured, and what it says of itself."""

import json
import os
import pathlib
import re
import subprocess
import time

from waiting import Unmeasured, holds

# How `valdrix status` calls the keys in its lists of codes.
KEY_CODES = {"volume-up": 0, "volume-down": 1, "mute": 7, "brightness-up": 2, "brightness-down": 3}


class Agent:
    def __init__(self, program, log):
        self.program, self.log, self.process = program, log, None

    def start(self):
        with open(self.log, "ab") as log:
            self.process = subprocess.Popen([self.program], stdout=log, stderr=log, stdin=subprocess.DEVNULL)
        if not holds(lambda: self.status().get("hasWindow"), 20):
            raise Unmeasured("the agent's panel did not come up")
        # Keys that somebody else has are tried again and again; those that are free are had by now.
        holds(lambda: self.status()["mediaKeys"].get("isTapInstalled"), 4)

    def end(self):
        if not self.process or self.process.poll() is not None:
            return
        self.command("quit")
        if holds(lambda: self.process.poll() is not None, 8) is None:
            self.process.kill()
        self.process.wait()

    def command(self, *words):
        return subprocess.run([self.program, *words], capture_output=True, text=True, timeout=15)

    def status(self):
        try:
            return json.loads(self.command("status").stdout)
        except (ValueError, subprocess.TimeoutExpired):
            return {}

    def presentation(self):
        return self.status().get("notch", {}).get("presentation")

    def presents(self, wanted, seconds=4):
        return bool(holds(lambda: self.presentation() == wanted, seconds))

    def rests(self):
        """Waits until nothing is drawn any more."""
        def same():
            before = self.status().get("framesDrawn")
            time.sleep(0.3)
            return self.status().get("framesDrawn") == before
        holds(same, 10)

    def has_ended(self):
        return self.process.poll() is not None

    def word_on(self, key):
        """What it says of one key, as a dictionary: `state`, `isWanted`, and `source` or `by` where it names them."""
        keys = self.status().get("mediaKeys", {})
        for account in keys.get("keys", []):
            if account.get("key") == key:
                return account
        # Older programs have lists of codes.
        states = [state for state in ("held", "missing", "released", "absent") if KEY_CODES[key] in keys.get(state, [])]
        return {"state": states[0] if states else "", "isWanted": True}

    def refuses_custody(self):
        """Whether it says that the desktop's keys cannot be handed over here; programs that say nothing are asked."""
        custody = self.status().get("mediaKeys", {}).get("custody", "available")
        if isinstance(custody, dict):
            custody = custody.get("state", custody.get("isAvailable", True))
        return custody not in ("available", True)

    def wakeups(self):
        """Voluntary switches so far, thread by thread."""
        threads = {}
        for task in pathlib.Path(f"/proc/{self.process.pid}/task").iterdir():
            count = re.search(r"^voluntary_ctxt_switches:\s*(\d+)", (task / "status").read_text(), re.M)[1]
            threads[f"{(task / 'comm').read_text().strip()} {task.name}"] = int(count)
        return threads

    def memory(self):
        """Megabytes: private, anonymous, and its proportional share."""
        rollup = pathlib.Path(f"/proc/{self.process.pid}/smaps_rollup").read_text()
        sizes = {name: int(size) for name, size in re.findall(r"^(\w+):\s*(\d+) kB", rollup, re.M)}
        private = sizes["Private_Clean"] + sizes["Private_Dirty"]
        return [size / 1024 for size in (private, sizes["Anonymous"], sizes["Pss"])]


def is_agent(process):
    try:
        return "valdrix" in os.path.basename(os.readlink(f"/proc/{process}/exe"))
    except OSError:
        return False
