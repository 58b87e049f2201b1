"""What an X server can be asked."""

from Xlib import X, XK, display, error
from Xlib.ext import xinput

XK.load_keysym_group("xf86")


def keycode(server, keysym):
    return server.keysym_to_keycode(XK.string_to_keysym(keysym.replace("XF86", "XF86_", 1)))


def is_taken(keysym):
    """Whether some program has grabbed the key, by the core protocol or by XInput, which GNOME Shell uses."""
    server = display.Display()
    code = keycode(server, keysym)
    root = server.screen().root
    refusal = error.CatchError(error.BadAccess)
    root.grab_key(code, 0, False, X.GrabModeAsync, X.GrabModeAsync, onerror=refusal)
    server.xinput_query_version()
    refused = root.xinput_grab_keycode(xinput.AllMasterDevices, X.CurrentTime, code, xinput.GrabModeAsync,
                                       xinput.GrabModeAsync, False, xinput.KeyPressMask, [0]).modifiers
    taken = bool(refused) or refusal.get_error() is not None
    server.close()
    return taken


def popups():
    """The windows that stand on the screen without a window manager, but the agent's: their ids."""
    server = display.Display()
    found = set()
    for window in server.screen().root.query_tree().children:
        try:
            attributes = window.get_attributes()
            name = window.get_wm_class() or ("", "")
        except error.BadWindow:
            continue
        if attributes.map_state == X.IsViewable and attributes.override_redirect \
                and attributes.win_class == X.InputOutput and "valdrix" not in name[0]:
            found.add(window.id)
    server.close()
    return found


def docked(name):
    """Whether a window of the class hangs in another's, which is how a tray of the server's shows it."""
    server = display.Display()
    embedding = server.intern_atom("_XEMBED_INFO")

    def has(window, depth):
        for child in window.query_tree().children:
            try:
                words = child.get_wm_class() or ("", "")
                is_named = depth and any(name in word for word in words)
                if is_named and child.get_full_property(embedding, X.AnyPropertyType):
                    return True
                if depth < 5 and has(child, depth + 1):
                    return True
            except error.BadWindow:
                continue
        return False

    result = has(server.screen().root, 0)
    server.close()
    return result
