"""The media keys: who acts on each, how many indicators come up, and whether the agent's word on it is true."""

import x11
from inputs import KEYSYMS
from waiting import Unmeasured, holds, watch
from witnesses import Press

KEYS = ("volume-up", "volume-down", "mute", "brightness-up", "brightness-down")


class KeyMeasurement:
    def __init__(self, lab):
        self.lab = lab

    def all(self, picture):
        return {key: self.lab.attempt(lambda key=key: self.one(key, f"{picture}-{key}")) for key in KEYS}

    def entrusted(self):
        """The second pass: the keys after `valdrix keys entrust`, and whether they are given back."""
        if self.lab.agent.refuses_custody():
            return None
        done = self.lab.agent.command("keys", "entrust")
        print("entrust:", done.returncode, (done.stdout + done.stderr).partition("\n")[0], flush=True)
        if done.returncode:
            return None
        holds(lambda: all(self.lab.agent.word_on(key)["state"] == "held" for key in KEYS), 5)
        cells = self.all("entrusted")
        print("restore:", self.lab.agent.command("keys", "restore").stdout, flush=True)
        holds(lambda: self.lab.agent.word_on("volume-up")["state"] != "held", 5)
        cells["restored"] = self.lab.attempt(lambda: self.one("volume-up", "restored"))
        return cells

    def one(self, key, picture):
        lab = self.lab
        if not lab.agent.presents("collapsed"):
            raise Unmeasured("the panel did not come to rest before the key")
        account = lab.agent.word_on(key)
        press = Press(lab.session, lab.monitor, lab.is_x11)
        lab.input.press(key)
        shows = self.observe(press)
        lab.take_picture(picture)
        actors = press.actors()
        taken = "desktop" in actors or press.desktop_took_it() or self.is_grabbed(key, account)
        truth = {True: " ✓", False: " ✗", None: ""}[is_true(account, actors, taken)]
        return f"{who(actors, taken)}; {shows + press.desktop_showed()}; {words(account)}{truth}"

    def observe(self, press):
        """Whether the agent's indicator came up; waits for whoever acts, and a while for others."""
        shown = []

        def look():
            press.look()
            if not shown and self.lab.agent.presentation() in ("volumeHUD", "brightnessHUD"):
                shown.append(True)
            return press.actors()

        holds(look, 1.2)
        watch(0.5, look)
        return bool(shown)

    def is_grabbed(self, key, account):
        return self.lab.is_x11 and account["state"] != "held" and x11.is_taken(KEYSYMS[key])


def who(actors, taken):
    if actors:
        return " and ".join(sorted(actors, reverse=True))
    return "desktop, without effect" if taken else "nobody"


def words(account):
    owner = account.get("by") or account.get("source")
    return (account["state"] or "nothing said") + (f" ({owner})" if owner else "")


def is_true(account, actors, taken):
    """Whether what the agent says of a key agrees with what a press came to."""
    state, acts = account["state"], "valdrix" in actors
    if state == "held":
        return actors == {"valdrix"}
    if state in ("taken", "missing"):
        return not acts and taken
    if state == "absent" or state == "released" and account.get("isWanted"):
        return not acts and not taken
    if state in ("withheld", "windowSystem", "released"):
        return not acts
    return None
