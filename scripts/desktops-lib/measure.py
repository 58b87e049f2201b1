#!/usr/bin/python3
"""Drives the agent on the desktop that the environment names, and writes down what is seen.

measure.py DESKTOP --program VALDRIX --input KIND --picture KIND --session DIR --out DIR --size WxH [--quick]
Writes OUT/row.json, anew after each measurement: what was measured before a desktop went stays.
"""

import argparse
import signal
import sys

import dark
from lab import Lab
from measure_keys import KeyMeasurement
from measure_panel import PanelMeasurement
from measure_window import WindowMeasurement


def options():
    parser = argparse.ArgumentParser()
    parser.add_argument("desktop")
    for name in ("program", "input", "picture", "session", "out", "size"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--quick", action="store_true")
    return parser.parse_args()


def measure(lab):
    """In this order: the rest before the settings were ever open, and the dark last, as it stays."""
    if not lab.start():
        return
    keys = KeyMeasurement(lab)
    PanelMeasurement(lab).fill()
    WindowMeasurement(lab).fill()
    lab.fill("keys", lambda: keys.all("key"))
    lab.fill("entrusted", keys.entrusted)
    lab.fill("dark", lambda: dark.measure(lab))


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    lab = Lab(options())
    try:
        measure(lab)
    finally:
        lab.close()


main()
