"""The keyboard, pointer and screen of Mutter without a screen, by its interface for remote desktops."""

import time

from PIL import Image

REMOTE = "org.gnome.Mutter.RemoteDesktop"
SHOT = "org.gnome.Shell.Screenshot"
KEYSYMS = {"alt": 0xFFE9, "super": 0xFFEB, "ctrl": 0xFFE3, "shift": 0xFFE1, "Escape": 0xFF1B,
           "Return": 0xFF0D, "BackSpace": 0xFF08, "Down": 0xFF54, "Page_Up": 0xFF55, "Page_Down": 0xFF56,
           "comma": ord(",")}
LEFT_BUTTON = 0x110  # linux/input-event-codes.h
STROKE = 0.04


class MutterSeat:
    def __init__(self, bus, folder):
        self._bus, self._file = bus, folder / "picture.png"
        self._session = bus.call(REMOTE, "/org/gnome/Mutter/RemoteDesktop", REMOTE, "CreateSession")[0]
        self._notify("Start")
        self.key("shift")  # the first key of a session is lost
        # Only who has this name may take pictures.
        bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                 "(su)", "org.gnome.Screenshot", 0)

    def _notify(self, method, signature=None, *arguments):
        self._bus.call(REMOTE, self._session, REMOTE + ".Session", method, signature, *arguments)

    def _press(self, keysym, is_down):
        self._notify("NotifyKeyboardKeysym", "(ub)", keysym, is_down)
        time.sleep(STROKE)

    def key(self, combination):
        keysyms = [KEYSYMS.get(name) or ord(name) for name in combination.split("+")]
        for keysym in keysyms:
            self._press(keysym, True)
        for keysym in reversed(keysyms):
            self._press(keysym, False)

    def type(self, text):
        for letter in text:
            self.key(letter)

    def move(self, x, y):
        # Into the corner first: where the pointer is now is not told.
        for way in ((-4000, -4000), (x, y)):
            self._notify("NotifyPointerMotionRelative", "(dd)", *map(float, way))
            time.sleep(STROKE)

    def click(self, x, y):
        self.move(x, y)
        time.sleep(0.2)
        for is_down in (True, False):
            self._notify("NotifyPointerButton", "(ib)", LEFT_BUTTON, is_down)
            time.sleep(STROKE)

    def scroll(self, x, y, steps):
        self.move(x, y)
        for _ in range(abs(steps)):
            self._notify("NotifyPointerAxisDiscrete", "(ui)", 0, 1 if steps > 0 else -1)
            time.sleep(STROKE)

    def pointer(self, x, y):
        """What the pointer looks like at a place, in bytes that only serve to be compared."""
        self.move(x, y)
        time.sleep(0.3)
        return self._take(with_pointer=True).crop((x - 24, y - 24, x + 24, y + 24)).tobytes()

    def picture(self):
        return self._take(with_pointer=False)

    def _take(self, with_pointer):
        self._bus.call("org.gnome.Shell", "/org/gnome/Shell/Screenshot", SHOT, "Screenshot", "(bbs)",
                       with_pointer, False, str(self._file))
        return Image.open(self._file).convert("RGB")
