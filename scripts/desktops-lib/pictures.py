"""Pictures of whole screens, and what can be seen on them."""

import os
import subprocess
import threading

from PIL import Image, ImageChops

BLACK = 24  # the brightest that a channel of the panel's black may be
CALENDAR = (0x30, 0x70, 0xD0)


def take_x11(path):
    subprocess.run(["import", "-silent", "-window", "root", path], check=True, timeout=20)


def take_grim(path):
    subprocess.run(["grim", path], check=True, timeout=20)


def take_gnome(path):
    import dbus
    name = "org.gnome.Shell.Screenshot"
    shell = dbus.SessionBus().get_object(name, "/org/gnome/Shell/Screenshot")
    dbus.Interface(shell, name).Screenshot(False, False, path, timeout=20)


def take_kwin(path):
    import dbus
    name = "org.kde.KWin.ScreenShot2"
    kwin = dbus.Interface(dbus.SessionBus().get_object("org.kde.KWin", "/org/kde/KWin/ScreenShot2"), name)
    reader, writer = os.pipe()
    pixels = []
    thread = threading.Thread(target=lambda: pixels.append(open(reader, "rb").read()))
    thread.start()
    try:
        sizes = kwin.CaptureWorkspace({"native-resolution": True}, dbus.types.UnixFd(writer), timeout=20)
    finally:
        os.close(writer)
        thread.join(20)
    size = (int(sizes["width"]), int(sizes["height"]))
    Image.frombuffer("RGBA", size, pixels[0], "raw", "BGRA", int(sizes["stride"]), 1).convert("RGB").save(path)


KINDS = {"x11": take_x11, "gnome": take_gnome, "kwin": take_kwin, "grim": take_grim}


def is_black(image, x, y):
    return max(image.getpixel((x, y))) <= BLACK


def run_of_black(image, start, step):
    """The pixels from `start` on in steps of `step` that are black, one after the other."""
    x, y = start
    count = 0
    while 0 <= x < image.width and 0 <= y < image.height and is_black(image, x, y):
        x, y, count = x + step[0], y + step[1], count + 1
    return count


def panel(image):
    """The black rectangle at the top of the middle: left, right, height; None when there is none."""
    middle = image.width // 2
    if not is_black(image, middle, 1):
        return None
    left = middle - run_of_black(image, (middle, 1), (-1, 0)) + 1
    right = middle + run_of_black(image, (middle, 1), (1, 0))
    return left, right, run_of_black(image, (middle, 0), (0, 1))


def calendar_marks(image, area):
    """How many bars of the calendar's colour stand in the area, one below the other."""
    rows = [any(max(abs(a - b) for a, b in zip(pixel, CALENDAR)) < 12 for pixel in row)
            for row in rows_of(image.crop(area))]
    return sum(now and not before for before, now in zip([False] + rows, rows))


def rows_of(image):
    pixels = list(image.getdata())
    return [pixels[start:start + image.width] for start in range(0, len(pixels), image.width)]


def changed_area(before, after, cell=8):
    """The rectangle around the largest patch that looks clearly different, in steps of `cell` pixels."""
    red, green, blue = ImageChops.difference(before, after).convert("RGB").split()
    difference = ImageChops.lighter(ImageChops.lighter(red, green), blue).point(lambda value: 255 if value > 16 else 0)
    columns, rows = difference.width // cell, difference.height // cell
    small = difference.resize((columns, rows), Image.BOX).load()
    left = {(x, y) for x in range(columns) for y in range(rows) if small[x, y] > 60}
    patch = max(patches(left), key=len, default=None)
    if not patch:
        return None
    xs, ys = [x for x, _ in patch], [y for _, y in patch]
    return min(xs) * cell, min(ys) * cell, (max(xs) + 1) * cell, (max(ys) + 1) * cell


def patches(left):
    """The connected parts of a set of cells, which is used up."""
    while left:
        patch, edge = set(), [left.pop()]
        while edge:
            x, y = edge.pop()
            patch.add((x, y))
            near = {(x + 1, y), (x - 1, y), (x, y + 1), (x, y - 1)} & left
            left -= near
            edge += near
        yield patch


def median_brightness(image, area):
    """0 to 255."""
    histogram = image.crop(area).convert("L").histogram()
    half, seen = sum(histogram) / 2, 0
    for value, count in enumerate(histogram):
        seen += count
        if seen >= half:
            return value
    return 255
