"""Waiting for conditions, never for longer than a bound."""

import time


class Unmeasured(Exception):
    """Why a cell of the table could not be measured."""


def holds(condition, seconds, pause=0.03):
    """Whether the condition comes to hold in time; what it returned then."""
    deadline = time.monotonic() + seconds
    while True:
        if result := condition():
            return result
        if time.monotonic() >= deadline:
            return None
        time.sleep(pause)


def watch(seconds, look, pause=0.03):
    """Looks again and again for a time: whether something happens can only be told by waiting."""
    holds(lambda: look() and False, seconds, pause)
