#!/usr/bin/python3
"""Makes the tables of what was measured: table.py RESULTS [--docs PAGE]."""

import argparse
import json
import pathlib

NAMES = {"gnome": "GNOME Shell", "gnome-x11": "GNOME Shell, X11", "plasma": "Plasma", "plasma-x11": "Plasma, X11",
         "xfce": "XFCE", "mate": "MATE", "cinnamon": "Cinnamon", "i3": "i3", "openbox": "openbox", "sway": "sway"}
PANEL = {"place": "place", "hover": "hover", "calendar": "calendar", "click-through": "clicks below",
         "focus": "keyboard focus", "fullscreen": "fullscreen", "tray": "tray item", "dark": "dark settings",
         "wake-ups": "wake-ups in 20 s", "memory": "private / anonymous / PSS, MB"}
KEYS = {key: key for key in ("volume-up", "volume-down", "mute", "brightness-up", "brightness-down")}
BEGIN, END = "<!-- made by scripts/desktops -->\n", "<!-- end -->\n"


class Notes:
    """Footnotes, each reason once."""

    def __init__(self):
        self.reasons = []

    def mark(self, reason):
        if reason not in self.reasons:
            self.reasons.append(reason)
        return f"— [{self.reasons.index(reason) + 1}]"

    def lines(self):
        return [f"[{number}] {reason}  " for number, reason in enumerate(self.reasons, 1)]


def cell(value, notes):
    if isinstance(value, dict):
        return notes.mark(value["why"].replace("|", "/").replace("\n", " "))
    return notes.mark("not reached") if value is None else value


def table(rows, columns, notes):
    lines = ["| desktop | " + " | ".join(columns.values()) + " |", "| --- |" + " --- |" * len(columns)]
    for name, cells in rows:
        if "failed" in cells:
            cells = dict.fromkeys(columns, {"why": cells["failed"]})
        lines.append(f"| {NAMES[name]} | " + " | ".join(cell(cells.get(column), notes) for column in columns) + " |")
    return lines


def key_rows(rows, cell_name):
    """The rows that have a measurement of the keys by that name, or a reason why not."""
    for name, cells in rows:
        if "failed" in cells:
            yield name, cells
        elif keys := cells.get(cell_name):
            yield name, dict.fromkeys([*KEYS, "restored"], keys) if "why" in keys else keys


def document(rows):
    notes = Notes()
    lines = ["The panel:", "", *table(rows, PANEL, notes), "", "The keys:", "",
             *table(list(key_rows(rows, "keys")), KEYS, notes)]
    if entrusted := [row for row in key_rows(rows, "entrusted") if "failed" not in row[1]]:
        lines += ["", "The keys after `valdrix keys entrust`:", "",
                  *table(entrusted, KEYS | {"restored": "volume-up after `valdrix keys restore`"}, notes)]
    return "\n".join([*lines, "", *notes.lines()]).rstrip() + "\n"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("--docs", type=pathlib.Path)
    options = parser.parse_args()
    files = {name: options.results / name / "row.json" for name in NAMES}
    rows = [(name, json.loads(file.read_text())) for name, file in files.items() if file.exists()]
    text = document(rows)
    (options.results / "table.md").write_text(text)
    if options.docs:
        before, rest = options.docs.read_text().split(BEGIN)
        options.docs.write_text(before + BEGIN + "\n" + text + "\n" + END + rest.split(END)[1])
    print(text, end="")


main()
