#!/usr/bin/python3
"""A window born fullscreen on an X server; tells as wayland-window.c does, but the server's key codes."""

from Xlib import X, Xatom, display


def tell(event):
    if event.type == X.ButtonPress:
        print("click", event.root_x, event.root_y, flush=True)
    elif event.type == X.KeyPress:
        print("key", event.detail, flush=True)
    elif event.type in (X.FocusIn, X.FocusOut) and event.mode not in (X.NotifyGrab, X.NotifyUngrab) \
            and event.detail not in (X.NotifyPointer, X.NotifyInferior):
        print("focus", "in" if event.type == X.FocusIn else "out", flush=True)
    elif event.type == X.ConfigureNotify:
        print("size", event.width, event.height, flush=True)


def main():
    server = display.Display()
    screen = server.screen()
    window = screen.root.create_window(
        100, 100, 600, 400, 0, screen.root_depth, X.InputOutput, X.CopyFromParent, background_pixel=0x3366AA,
        event_mask=X.ButtonPressMask | X.KeyPressMask | X.FocusChangeMask | X.StructureNotifyMask)
    window.set_wm_name("desktops")
    window.set_wm_class("desktops", "desktops")
    window.set_wm_hints(flags=1, input=1)
    window.change_property(server.intern_atom("_NET_WM_STATE"), Xatom.ATOM, 32,
                           [server.intern_atom("_NET_WM_STATE_FULLSCREEN")])
    window.map()
    while True:
        tell(server.next_event())


main()
