#!/usr/bin/python3
"""Writes the five events of the desktop laboratory into a folder: make_calendar.py FOLDER."""

import datetime
import pathlib
import sys

EVENT = """BEGIN:VCALENDAR\r
VERSION:2.0\r
PRODID:-//valdrix//desktops//\r
BEGIN:VEVENT\r
UID:desktops-{number}\r
DTSTAMP:20260101T000000Z\r
DTSTART{start}\r
DTEND{end}\r
SUMMARY:{title}\r
END:VEVENT\r
END:VCALENDAR\r
"""

HOUR = datetime.timedelta(hours=1)
DAY = 24 * HOUR

# From now, how long, and what; whole days where it begins with a day.
EVENTS = [
    (HOUR, HOUR, "Point d'équipe"),
    (3 * HOUR, HOUR, "Rendez-vous chez le dentiste"),
    (20 * HOUR, 2 * HOUR, "Revue de projet, avec un titre trop long pour tenir sur sa ligne"),
    (2, 1, "Salon du livre"),
    (3 * DAY, HOUR, "Déjeuner avec Zoé"),
]


def stamps(now, after, length):
    if isinstance(after, int):
        first = now.date() + after * DAY
        return [f";VALUE=DATE:{day:%Y%m%d}" for day in (first, first + length * DAY)]
    return [f":{time:%Y%m%dT%H%M%SZ}" for time in (now + after, now + after + length)]


def main():
    folder = pathlib.Path(sys.argv[1])
    now = datetime.datetime.now(datetime.timezone.utc).replace(second=0)
    for number, (after, length, title) in enumerate(EVENTS):
        start, end = stamps(now, after, length)
        text = EVENT.format(number=number, start=start, end=end, title=title)
        (folder / f"{number}.ics").write_bytes(text.encode())


main()
